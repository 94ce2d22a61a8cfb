' Calls of numeric Functions and Subs nested deeply: results and by-reference arguments through
' thousands of levels, an error deep in a chain of calls trapped several callers up (by a handler
' that returns, by one that resumes with the next statement, and by On Error Resume Next), and
' recursion that runs away until the depth limit stops it with an error that can be trapped.
Dim calls As Long

Function Depth(ByVal n As Long) As Long
    calls = calls + 1
    If n = 0 Then
        Depth = 0
    Else
        Depth = Depth(n - 1) + n Mod 3
    End If
End Function

Sub Accumulate(ByRef total As Long, ByVal n As Long)
    If n > 0 Then
        total = total + n
        Accumulate total, n - 1
    End If
End Sub

Sub SwapDeep(ByRef a As Double, ByRef b As Double, ByVal levels As Integer)
    Dim t As Double
    If levels > 0 Then
        SwapDeep b, a, levels - 1
    Else
        t = a
        a = b
        b = t
    End If
End Sub

Function Divide(ByVal a As Long, ByVal b As Long) As Long
    Divide = a \ b
End Function

Function Chain(ByVal level As Long, ByVal b As Long) As Long
    If level = 0 Then
        Chain = Divide(100, b)
    Else
        Chain = Chain(level - 1, b) + 1
    End If
End Function

Function Guarded(ByVal b As Long) As Long
    On Error GoTo Failed
    Guarded = Chain(20, b)
    Exit Function
Failed:
    Guarded = -Err.Number
End Function

Function GuardedResume(ByVal b As Long) As Long
    Dim r As Long
    On Error GoTo Failed
    r = -1
    r = Chain(12, b)
    GuardedResume = r * 10
    Exit Function
Failed:
    Resume Next
End Function

Function Runaway(ByVal n As Long) As Long
    calls = calls + 1
    Runaway = Runaway(n + 1) + 1
End Function

Sub Main
    Dim total As Long, r As Long, x As Double, y As Double
    Debug.Print Depth(5000); calls
    Accumulate total, 3000
    Debug.Print total
    x = 1.5
    y = -2
    SwapDeep x, y, 41
    Debug.Print x; y
    SwapDeep x, y, 40
    Debug.Print x; y
    Debug.Print Guarded(4); Guarded(0); Guarded(-5)
    Debug.Print GuardedResume(5); GuardedResume(0)
    On Error Resume Next
    r = 7
    r = Chain(30, 0)
    Debug.Print Err.Number; Err.Description; r
    Err.Clear
    calls = 0
    r = Runaway(1)
    Debug.Print Err.Number; Err.Description; r; calls
    Err.Clear
    Debug.Print Depth(10); Chain(3, 1)
    Debug.Print "end"
End Sub
