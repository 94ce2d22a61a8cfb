' LSet into a field that is not a string is refused when compiled.
Type Pair
    a As Long
    b As String
End Type
Sub Main
    Dim p As Pair
    LSet p.a = "x"
End Sub
