' LSet and RSet into an element of a String or Variant array rewrite the element's text in place at its
' own length.
Sub Main
    Dim names(2) As String, v(1 To 2, 1 To 2) As Variant, i As Integer
    names(0) = "abcdef"
    names(1) = "xyz"
    LSet names(0) = "ab"
    i = 1
    RSet names(i) = "1"
    Debug.Print "[" & names(0) & "][" & names(1) & "]"
    LSet names(1) = "longer than it"
    Debug.Print "[" & names(1) & "]"
    v(2, 1) = "....."
    RSet v(2, 1) = 42
    Debug.Print "[" & v(2, 1) & "]"
    On Error Resume Next
    v(1, 1) = 5
    LSet v(1, 1) = "x"
    Debug.Print Err.Number; v(1, 1)
    Err.Clear
    LSet names(5) = "x"
    Debug.Print Err.Number
End Sub
