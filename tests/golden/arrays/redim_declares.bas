' ReDim of an undeclared name declares a local dynamic array; As gives its element kind; without
' Preserve the number of dimensions may change
Sub Main
    ReDim names(1 To 2) As String
    names(2) = "two"
    Debug.Print names(1); names(2)
    ReDim counts(3)
    counts(3) = 1.5
    Debug.Print counts(3); counts(0)
    Dim d() As Integer
    ReDim d(4)
    ReDim d(1 To 2, 1 To 3)
    d(2, 3) = 6
    Debug.Print d(2, 3); UBound(d, 2)
    ReDim d(2) As Integer, names(0) As String
    Debug.Print UBound(d); UBound(names)
    Debug.Print "end"
End Sub
