' An operator whose operands are both constants is worked out when compiling; a division by zero
' there is a compile error at the operator.
Sub Main
    Dim total As Long
    Debug.Print "never printed"
    total = 100 \ (5 - 5)
End Sub
