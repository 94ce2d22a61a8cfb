' Select Case over a String whose Case lines hold only string items: the first line with an equal item
' wins, the empty string and strings that differ only after their first character included.
Function Kind(ByVal s As String) As String
    Select Case s
        Case ""
            Kind = "empty"
        Case "beta", "alpha"
            Kind = "first two"
        Case "alphabet", "Alpha"
            Kind = "longer or other case"
        Case "alpha", "gamma"
            Kind = "never alpha here"
        Case Else
            Kind = "else"
    End Select
End Function

Sub Main
    Dim words(8) As String, i As Long, v
    words(0) = ""
    words(1) = "alpha"
    words(2) = "beta"
    words(3) = "gamma"
    words(4) = "alphabet"
    words(5) = "Alpha"
    words(6) = "alphb"
    words(7) = "betb"
    words(8) = "a"
    For i = 0 To 8
        Debug.Print i; Kind(words(i))
    Next i
    ' A selector read from an array element and a Variant, in a loop.
    Dim counts(3) As Long
    For i = 0 To 44
        Select Case words(i Mod 9)
            Case "alpha", "alphabet"
                counts(0) = counts(0) + 1
            Case "gamma"
                counts(1) = counts(1) + 1
            Case ""
                counts(2) = counts(2) + 1
            Case Else
                counts(3) = counts(3) + 1
        End Select
    Next i
    Debug.Print counts(0); counts(1); counts(2); counts(3)
    v = "gamma"
    Select Case v
        Case "gamma"
            Debug.Print "variant gamma"
        Case Else
            Debug.Print "variant else"
    End Select
End Sub
