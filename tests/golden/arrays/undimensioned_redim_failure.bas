' A ReDim that fails leaves the array without storage, of its declared kind
Sub Main
    Dim d() As Integer
    ReDim d(2)
    On Error Resume Next
    ReDim d(5 To 1)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print TypeName(d); VarType(d); IsArray(d)
    Debug.Print UBound(d)
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
