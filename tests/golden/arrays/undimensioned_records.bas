' An array of records that is not dimensioned has no descriptor and so no record description: it is an
' array of records under the fallback type name until ReDim gives it storage
Type Point
    X As Long
End Type

Sub Main
    Dim p() As Point
    Debug.Print TypeName(p); VarType(p); IsArray(p)
    Dim v As Variant
    v = p
    Debug.Print v
    On Error Resume Next
    Debug.Print p(0).X
    Debug.Print Err.Number; Err.Description
    Err.Clear
    ReDim p(2)
    p(2).X = 4
    Debug.Print TypeName(p); p(2).X
    Dim none() As Point
    p = none
    Debug.Print Err.Number; TypeName(p); VarType(p)
    Debug.Print "end"
End Sub
