' An error in a procedure without a handler is trapped by its caller's handler; Resume Next goes on
' after the call
Sub Divide(d As Integer)
    Dim q As Integer
    Debug.Print "dividing"
    q = 10 \ d
    Debug.Print "never printed"
End Sub

Sub Main
    On Error GoTo Trap
    Divide 0
    Debug.Print "after the call"; Err.Number
    Debug.Print "end"
    Exit Sub
Trap:
    Debug.Print "trapped"; Err.Number; Err.Description
    Resume Next
End Sub
