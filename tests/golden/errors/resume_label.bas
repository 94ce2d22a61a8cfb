' Resume label leaves the handler and continues at the label with Err cleared
Sub Main
    Dim tries As Integer
    On Error GoTo Retry
Again:
    tries = tries + 1
    Debug.Print "try"; tries
    If tries < 3 Then Err.Raise 50 + tries
    Debug.Print "done"; Err.Number
    Debug.Print "end"
    Exit Sub
Retry:
    Debug.Print "failed"; Err.Number
    Resume Again
End Sub
