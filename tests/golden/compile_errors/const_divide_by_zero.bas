' A Const inside a procedure that divides by zero is a compile error.
Sub Main
    Const Ratio = 1 / 0
    Debug.Print "never printed"; Ratio
End Sub
