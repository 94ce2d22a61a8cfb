' Inside With, a "." after a blank starts a With-relative argument of a call statement
Type Point
    X As Integer
    Y As Integer
End Type

Type Shape
    Name As String
    Corner As Point
End Type

Sub Move(p As Point, ByVal by As Integer)
    p.X = p.X + by
    p.Y = p.Y + by
End Sub

Sub Show(ByVal text As String, ByVal n As Integer)
    Debug.Print text; n
End Sub

Sub Main
    Dim s As Shape
    s.Name = "box"
    With s
        Move .Corner, 1
        Move .Corner, 2
        Show .Name, .Corner.X
        Call Show(.Name, .Corner.Y)
    End With
    Debug.Print s.Corner.X; s.Corner.Y
End Sub
