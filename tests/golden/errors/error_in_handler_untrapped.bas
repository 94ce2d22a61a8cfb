' An error inside a running handler with no outer handler stops the run
Sub Main
    On Error GoTo Oops
    Debug.Print "start"
    Err.Raise 5
    Exit Sub
Oops:
    Debug.Print "handler"; Err.Number
    Err.Raise 1001, , "Second."
    Debug.Print "never printed"
End Sub
