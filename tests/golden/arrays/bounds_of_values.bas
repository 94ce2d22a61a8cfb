' LBound and UBound of any array value: function results, Variants and their elements (an element that
' holds no array is a type mismatch)
Function Squares(n As Integer) As Long()
    Dim r() As Long
    ReDim r(2 To n)
    Squares = r
End Function

Sub Main
    Dim v As Variant
    v = Squares(5)
    Debug.Print LBound(Squares(4)); UBound(Squares(4)); UBound(v); LBound(v, 1)
    Dim w(3) As Variant
    w(1) = v
    Debug.Print UBound(w(1)); UBound(w)
    On Error Resume Next
    Debug.Print UBound(w(2))
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print UBound(Squares(4), 2)
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
