' Declare'd procedures are bound at their first call: a call runs the library function, its arguments
' evaluated once; a library that cannot be loaded raises 10040.
Declare Function GetTickCount Lib "kernel32" () As Long
Declare Sub Sleep Lib "kernel32" (ByVal ms As Long)
Declare Function lstrlen Lib "kernel32" Alias "lstrlenA" (ByVal s As String) As Long
Declare Function TakesAny Lib "none" (p As Any) As Long
Function Traced(x)
    Debug.Print "argument"; x
    Traced = x
End Function
Sub Main
    Dim n As Long
    On Error Resume Next
    n = GetTickCount()
    Debug.Print Err.Number; " "; n <> 0
    Err.Clear
    Sleep 1
    Debug.Print Err.Number
    Err.Clear
    Call Sleep(Traced(2))
    Debug.Print Err.Number
    Err.Clear
    n = lstrlen("abc") + 1
    Debug.Print Err.Number; n
    Err.Clear
    n = TakesAny(n)
    Debug.Print Err.Number
    On Error GoTo 0
    Debug.Print GetTickCount > 0 Or GetTickCount <= 0
End Sub
