' A string assigned a piece of itself: the piece is moved to the start of the variable's own block.
Type Entry
    Label As String
End Type

Sub Main
    Dim s As String, v, i As Long, e As Entry, names(2) As String
    s = "abcdefghij"
    s = Mid(s, 3)
    Debug.Print s; Len(s)
    s = Right(s, 5)
    Debug.Print s; Len(s)
    s = Left(s, 2)
    Debug.Print s; Len(s)
    s = Mid(s, 2, 1)
    Debug.Print s; Len(s)
    ' Mid with a start and a length is read in place: the piece overlaps the variable's own text.
    s = "abcdefghij"
    s = Mid(s, 2, 6)
    Debug.Print s; Len(s)
    i = 2
    s = Mid(s, i, i + 1)
    Debug.Print s; Len(s)
    s = "abcdefghijklmnopq"
    s = Mid(s, 2, 12)
    Debug.Print s; Len(s)
    s = Mid(s, 3, 9)
    Debug.Print s; Len(s)
    ' Longer than a short copy: each step drops the first seven characters.
    s = String(40, "x") & "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"
    For i = 1 To 6
        s = Mid(s, 8)
        Debug.Print Len(s); " "; s
    Next i
    s = String(20, "y") & s
    s = Mid(s, 3, 45)
    Debug.Print Len(s); " "; s
    v = "variant text"
    v = Mid(v, 9)
    Debug.Print v; Len(v)
    e.Label = "label of an entry"
    e.Label = Mid(e.Label, 10)
    Debug.Print e.Label; Len(e.Label)
    names(1) = "element one"
    names(1) = Mid(names(1), 9)
    Debug.Print names(1); Len(names(1))
    ' A shorter text, then a longer one, into the same variable.
    s = "epsilon"
    s = "pi"
    s = "omicron"
    Debug.Print s; Len(s)
End Sub
