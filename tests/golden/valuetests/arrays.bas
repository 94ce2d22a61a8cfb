' Array, LBound and UBound.
Sub Main
    Dim a, b(2 To 5, 3) As Integer
    a = Array(1, "two", 3.5)
    Debug.Print LBound(a); UBound(a); a(1); TypeName(a); UBound(Array())
    Debug.Print LBound(b); UBound(b); LBound(b, 2); UBound(b, 2)
    Debug.Print UBound(a, 2)
    Debug.Print "not reached"
End Sub
