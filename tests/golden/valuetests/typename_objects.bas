'#Uses "lib/Shape.cls"
' TypeName and VarType of object references: Nothing, and an instance of one of the engine's own
' classes, which gives its class name.
Sub Main
    Dim s As Shape, v
    Debug.Print TypeName(s); VarType(s); IsObject(s)
    Set s = New Shape
    Set v = s
    Debug.Print TypeName(s); " "; TypeName(v); VarType(v); IsObject(v)
    Debug.Print "done"
End Sub
