' Input # reads text fields: a record element is no target of it.
Type Pair
    a As Integer
    b As Integer
End Type
Sub Main
    Dim pairs(2) As Pair
    Input #1, pairs(1)
End Sub
