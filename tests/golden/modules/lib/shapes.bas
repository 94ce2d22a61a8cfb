' Used by lib/palette.bas only: reached from the macro through it.
'#Uses "hidden.bas"
Public Const ShapeSides = 4
Public ShapeCount As Integer
Public Type Point
    x As Integer
    y As Integer
End Type
Public Enum Shade
    Light = 1
    Dark
End Enum
Public Origin As Point

Public Function Twice(n)
    Twice = n * 2
End Function
