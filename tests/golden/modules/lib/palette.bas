'#Uses "shapes.bas"
Public Const PaletteName = "warm"

Public Function Mix(a As Shade, b As Shade) As Shade
    Mix = a + b
End Function
