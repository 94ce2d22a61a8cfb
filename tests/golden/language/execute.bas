' Execute: the statements of one line given as text, run in the scope of the running procedure
Dim total As Long

Sub Add(ByVal n As Long)
    total = total + n
End Sub

Sub Main
    Dim x As Integer, s As String
    x = 6
    Execute "Debug.Print x * 7"
    Execute "x = x + 1: s = ""set"""
    Debug.Print x; s
    Execute "Add x"
    Execute "Call Add(10)"
    Debug.Print total
    On Error Resume Next
    Execute "x = "
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Execute "x = x / 0"
    Debug.Print Err.Number; Err.Description
    Err.Clear
    On Error GoTo 0
    Debug.Print "done"; x
End Sub
