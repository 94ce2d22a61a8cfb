' An enumeration member cannot be the element of a For Each loop.
Enum Sizes
    Small = 1
End Enum

Sub Main
    For Each Small In Array(7, 8)
    Next
End Sub
