' Element access: every index within its bounds, as many indexes as dimensions, a dimensioned array
Sub Main
    Dim a(1 To 3, 0 To 1) As Long
    Dim d() As Long
    On Error Resume Next
    a(4, 0) = 1
    Debug.Print Err.Number; Err.Description
    Err.Clear
    a(1, 2) = 1
    Debug.Print Err.Number; Err.Description
    Err.Clear
    a(0, 0) = 1
    Debug.Print Err.Number
    Err.Clear
    Debug.Print a(1)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print a(1, 1, 1)
    Debug.Print Err.Number
    Err.Clear
    Debug.Print d(0)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print UBound(a, 3)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print LBound(a, 0)
    Debug.Print Err.Number
    Err.Clear
    a(3, 1) = 31
    Debug.Print a(3, 1); UBound(a, 1); LBound(a, 2); UBound(a, 2)
    Debug.Print "end"
End Sub
