' On Error GoTo 0 turns the handler off: the next error stops the run
Sub Main
    On Error Resume Next
    Err.Raise 9
    Debug.Print "skipped"; Err.Number
    On Error GoTo 0
    Debug.Print "unprotected"
    Err.Raise 10
    Debug.Print "never printed"
End Sub
