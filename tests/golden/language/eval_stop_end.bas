' Code that Eval and Execute run nested inside a statement neither stops nor ends the run in the middle of
' that statement: a Stop there is passed over, an End raises "Invalid instruction." for the caller to trap
Dim calls As Integer

Function Stopping() As Integer
    calls = calls + 1
    Stop
    Stopping = calls * 10
End Function

Function Ending() As Integer
    Ending = 1
    End
End Function

Sub Main
    Debug.Print Eval("Stopping()")
    Execute "Debug.Print Stopping()"
    On Error Resume Next
    Debug.Print Eval("Ending()")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    z = 0
    x = 1 / z
    Debug.Print Err.Number; Err.Description
    On Error GoTo 0
    Debug.Print "end"; calls
End Sub
