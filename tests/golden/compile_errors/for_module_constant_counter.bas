' A module-level constant cannot be the counter of a For loop.
Const Limit = 3

Sub Main
    For Limit = 1 To 3
    Next
End Sub
