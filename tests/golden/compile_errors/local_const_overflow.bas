' A Const inside a procedure whose number does not fit its declared type overflows when compiling.
Sub Main
    Const Small As Integer = 32767
    Const Big As Integer = 40000
    Debug.Print "never printed"
End Sub
