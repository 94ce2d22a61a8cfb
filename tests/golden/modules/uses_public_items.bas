' Every kind of public item of the modules reached through '#Uses, directly or through another module
'#Uses "lib/palette.bas"
Dim corner As Point
Dim tone As Shade

Sub Main
    Debug.Print PaletteName; ShapeSides; Depth
    Debug.Print Twice(21); Mix(Light, Dark)
    ShapeCount = 5
    Debug.Print ShapeCount
    Dim p As Point
    p.x = 3
    corner = p
    corner.y = 4
    Debug.Print corner.x; corner.y
    Origin.x = 7
    Debug.Print Origin.x
    tone = Dark
    Dim local As Shade
    local = tone + 1
    Debug.Print tone; local; TypeName(local)
    ' Private items of a used module are not visible: these names are implicit locals.
    Debug.Print IsEmpty(Secret); IsEmpty(AlsoPrivate); IsEmpty(notShared)
End Sub
