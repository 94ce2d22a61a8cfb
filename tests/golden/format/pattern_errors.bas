' Failing patterns raise 10620; values without text raise 10080
Sub Try(value As Variant, pattern As String)
    On Error GoTo Failed
    Debug.Print Format(value, pattern)
    Exit Sub
Failed:
    Debug.Print Err.Number; Err.Description
End Sub

Sub Main
    Try 5, "E+0"
    Try 5, "0E0"
    Try 5, "0.0,"
    Try 1E+200, "0"
    Try 5, "0""abc"
    Try 5, "0;0;0;0;0"
    Try #1/1/2000#, "ttt"
    Try CVErr(5), "0"
    Debug.Print "end"
End Sub
