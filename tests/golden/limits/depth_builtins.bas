' Calls of a built-in one level past the limit.
Function F(x)
    F = x
End Function
Sub Main
    Debug.Print Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(Abs(1))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))
End Sub
