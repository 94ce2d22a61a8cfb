' A local constant cannot be the counter of a For loop.
Sub Main
    Const A = 1
    For A = 1 To 3
    Next
End Sub
