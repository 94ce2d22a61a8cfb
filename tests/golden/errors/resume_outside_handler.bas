' Resume Next outside a handler raises 10071, which the caller's handler traps
Sub Stray
    Debug.Print "stray"
    Resume Next
    Debug.Print "never printed"
End Sub

Sub Main
    On Error GoTo Trap
    Stray
    Debug.Print "back"
    Debug.Print "end"
    Exit Sub
Trap:
    Debug.Print Err.Number; Err.Description
    Resume Next
End Sub
