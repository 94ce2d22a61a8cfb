' Unary operators one past the limit.
Function F(x)
    F = x
End Function
Sub Main
    Debug.Print -----------------------------------------------------------------1
End Sub
