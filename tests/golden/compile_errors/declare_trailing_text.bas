' Text after a Declare's parameter list and result is refused.
Declare Function GetTickCount Lib "kernel32" () As Long Extra

Sub Main
    Debug.Print "never printed"
End Sub
