' s = s & ... appends to the variable's string in place; the text is what & gives.
Function Tag(ByVal n As Integer) As String
    Tag = "<" & n & ">"
End Function

Sub Main
    Dim s As String, v As Variant, i As Integer, n As Variant
    For i = 1 To 5
        s = s & i
    Next i
    Debug.Print s
    s = s & "-" & Mid("abcdef", 2, 3) & 7 + 1 & Null
    Debug.Print s
    s = s & (s & "!")
    Debug.Print s; Len(s)
    s = s & Tag(3) & Tag(4)
    Debug.Print s
    v = 12
    v = v & 3.5
    Debug.Print v; VarType(v)
    v = Null
    v = v & "x"
    Debug.Print v
    n = Empty
    n = n & n & 1
    Debug.Print n
    s = ""
    For i = 1 To 2000
        s = s & Chr(65 + i Mod 26)
    Next i
    Debug.Print Len(s); Mid(s, 1990, 11)
End Sub
