' "&" followed by H after an operand starts a number scan.
Sub Main
    Dim x
    x = "a" &hi
End Sub
