' A Variant assigned an array without storage holds a copy of it: an array of the same kind, still
' without storage, shown as such
Sub Main
    Dim d() As Integer
    Dim v As Variant
    v = d
    Debug.Print TypeName(v); VarType(v); IsArray(v); IsEmpty(v)
    Debug.Print v
    Dim s() As String
    Dim w As Variant
    w = s
    Debug.Print TypeName(w); VarType(w)
    On Error Resume Next
    Debug.Print UBound(v)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print v(0)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    ReDim d(2)
    Debug.Print TypeName(v); UBound(d)
    Debug.Print "end"
End Sub
