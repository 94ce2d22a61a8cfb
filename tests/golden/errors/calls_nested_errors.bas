' Calls nested deeper than the calls that run at once on the native stack: errors raised deep inside
' expressions are trapped at every level, Resume Next goes on after the call, results and ByRef
' arguments come back through every depth, an error after a ByRef Integer given a Long leaves the Long
' alone, and runaway recursion inside an expression overflows into the caller's handler
Dim trace As String

Function Down(ByVal n As Long, ByVal failAt As Long) As Long
    If n = failAt Then Err.Raise 1000 + n
    If n = 0 Then
        Down = 1
    Else
        Down = Down(n - 1, failAt) + 1
    End If
End Function

Function Guarded(ByVal n As Long, ByVal failAt As Long, ByVal trapAt As Long) As Long
    If n = trapAt Then On Error GoTo Trap
    If n = failAt Then Err.Raise 2000 + n
    If n = 0 Then
        Guarded = 1
    Else
        Guarded = Guarded(n - 1, failAt, trapAt) + 1
    End If
    Exit Function
Trap:
    trace = trace & "trap" & n & ":" & Err.Number & " "
    Guarded = -100
End Function

Sub Count(ByRef total As Long, ByVal n As Long)
    If n = 0 Then Exit Sub
    total = total + 1
    Count total, n - 1
End Sub

Sub Widen(ByRef small As Integer, ByVal fail As Boolean)
    small = small + 1
    If fail Then Err.Raise 5
End Sub

Function Sum(ParamArray items() As Variant) As Long
    Dim item As Variant
    For Each item In items
        Sum = Sum + item
    Next item
End Function

Function Pick(Optional ByVal a As Long = 7, Optional b As Variant) As String
    Pick = a & "/" & IsMissing(b)
End Function

Function Endless(ByVal n As Long) As Long
    Endless = Endless(n + 1) + 1
End Function

Sub Main
    Dim r As Long, total As Long, l As Long, i As Integer
    Debug.Print Down(30, -1); Down(3, -1) + Down(12, -1)
    On Error Resume Next
    r = 5
    r = Down(25, 3)
    Debug.Print "resume next:"; Err.Number; r
    Err.Clear
    r = Down(25, 20) + Down(2, -1)
    Debug.Print "shallow:"; Err.Number; r
    On Error GoTo 0
    Debug.Print Guarded(20, 2, 15); Guarded(20, 2, 3); Guarded(20, 12, 19); Guarded(4, -1, 0)
    Debug.Print trace
    Count total, 40
    Debug.Print "count:"; total
    l = 1: i = 1
    Widen l, False
    Widen i, False
    Debug.Print "widen:"; l; i
    On Error GoTo Trap
    Widen l, True
    Debug.Print "after trap:"; l
    Widen i, True
    Debug.Print "after trap:"; i
    Debug.Print Sum(); Sum(1, 2, 3); Sum(Down(9, -1), 1)
    Debug.Print Pick(); Pick(1); Pick(, 2); Pick(b:=3, a:=4)
    r = -1
    r = Endless(0)
    Debug.Print "overflow:"; r
    Debug.Print "end"
    Exit Sub
Trap:
    Debug.Print "trapped"; Err.Number
    Resume Next
End Sub
