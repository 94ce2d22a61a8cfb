' Records and arrays of records are taken by the built-ins' Variant parameters: the value tests,
' TypeName and VarType name them, and IIf, Choose and CVar give Variants that hold copies of them.
Type Point
    X As Integer
    Y As Long
End Type

Sub Main
    Dim p As Point, q As Point, points(1 To 2) As Point, v As Variant
    p.X = 1: q.X = 2
    Debug.Print TypeName(p); " "; TypeName(points); VarType(p); VarType(points)
    Debug.Print IsArray(p); IsArray(points); IsObject(p); IsEmpty(p); IsNull(p); IsNumeric(p); IsError(p)
    v = IIf(p.X > q.X, p, q)
    Debug.Print TypeName(v); v.X
    v = Choose(1, p, q)
    p.X = 10
    Debug.Print v.X; p.X
    v = CVar(points)
    Debug.Print TypeName(v); UBound(v)
    Debug.Print "end"
End Sub
