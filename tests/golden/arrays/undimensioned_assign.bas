' Whole-array assignment to and from an array without storage
Function Made(n As Integer) As Long()
    Dim r() As Long
    ReDim r(n)
    r(n) = n
    Made = r
End Function

Sub Main
    Dim d() As Long
    d = Made(2)
    Debug.Print TypeName(d); UBound(d); d(2)
    Dim none() As Long
    d = none
    Debug.Print TypeName(d); VarType(d); IsArray(d)
    On Error Resume Next
    Debug.Print UBound(d)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Dim texts() As String
    texts = none
    Debug.Print Err.Number; Err.Description; TypeName(texts)
    Err.Clear
    d = Made(1)
    Dim v As Variant
    v = none
    d = v
    Debug.Print Err.Number; TypeName(d); VarType(d)
    none = Made(3)
    Debug.Print TypeName(none); UBound(none); none(3)
    Debug.Print "end"
End Sub
