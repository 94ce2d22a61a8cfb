' DateAdd: an unknown interval raises 10620, a result past the year 9999 overflows, Null cannot be used
Sub Try(interval As String, number As Double)
    On Error GoTo Failed
    Debug.Print DateAdd(interval, number, #1/1/2000#)
    Exit Sub
Failed:
    Debug.Print Err.Number; Err.Description
End Sub

Sub Main
    Try "x", 1
    Try "mm", 1
    Try "yyyy", 8000
    Try "s", 3E+9
    On Error Resume Next
    Debug.Print DateAdd("d", 1, Null)
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
