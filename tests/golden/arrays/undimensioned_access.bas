' Bounds and elements of an array without storage raise "Array is not dimensioned."; a value that is
' no array at all is a type mismatch
Sub Show(what As String)
    Debug.Print what; ": "; Err.Number; Err.Description
    Err.Clear
End Sub

Sub Main
    Dim d() As Integer
    Dim s() As String
    Dim v()
    On Error Resume Next
    Debug.Print LBound(d)
    Show "LBound"
    Debug.Print UBound(s)
    Show "UBound"
    Debug.Print UBound(v, 2)
    Show "UBound of a dimension"
    Debug.Print d(0)
    Show "read"
    d(0) = 1
    Show "write"
    s(1, 2) = "x"
    Show "write with two indexes"
    Debug.Print v(0)
    Show "read a Variant element"
    Dim e As Variant
    Debug.Print UBound(e)
    Show "UBound of Empty"
    Debug.Print e(0)
    Show "element of Empty"
    Debug.Print TypeName(d); VarType(d)
    Debug.Print "end"
End Sub
