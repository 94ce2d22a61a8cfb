' Optional parameters take their defaults when left out, also past a named argument
Function Scaled(ByVal n As Integer, Optional factor As Integer = 10, Optional offset As Long = 3) As Long
    Scaled = n * factor + offset
End Function

Sub Main
    Debug.Print Scaled(2)
    Debug.Print Scaled(2, 5)
    Debug.Print Scaled(2, 5, 1)
    Debug.Print Scaled(2, offset:=0)
    Debug.Print "end"
End Sub
