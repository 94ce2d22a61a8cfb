' A procedure that traps its own error returns to a line of several statements, which goes on after the
' call; an error the callee does not trap ends the line in the caller, where Resume Next goes on after the
' call.
Sub Quiet()
    Dim z As Integer
    On Error Resume Next
    z = 1 \ z
End Sub

Sub Handled()
    On Error GoTo recover
    Error 5
    Exit Sub
recover:
    Debug.Print "handled"
End Sub

Sub Loud()
    Error 7
    Debug.Print "never"
End Sub

Sub Main
    Quiet: Debug.Print "after Quiet"
    Handled: Debug.Print "after Handled"
    Dim k As Integer
    For k = 1 To 2: Quiet: Debug.Print "pass"; k: Next k
    If k > 0 Then Quiet: Debug.Print "in If"
    On Error Resume Next
    Loud: Debug.Print "after Loud"; Err.Number
    Debug.Print "end"
End Sub
