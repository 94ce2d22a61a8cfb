' An element the type does not have is reported when the procedure is compiled
Type Point
    X As Integer
End Type

Sub Main
    Dim p As Point
    p.Z = 1
End Sub
