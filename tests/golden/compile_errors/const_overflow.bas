' A Const whose number does not fit its declared type overflows when compiling.
Const Small As Integer = 32767
Const Big As Integer = 32768

Sub Main
    Debug.Print "never printed"
End Sub
