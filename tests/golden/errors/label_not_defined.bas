' On Error GoTo a label that does not exist is reported at the end of the procedure
Sub Main
    On Error GoTo Nowhere
    Debug.Print "never run"
End Sub
