' A statement that starts with "(" assigns to an expression.
Sub Main
    Dim x
    (x) = 1
End Sub
