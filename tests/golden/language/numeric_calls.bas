' Calls of Functions and Subs inside numeric statements: results of each kind, arguments by value and by
' reference (locals, module variables, parameters passed on), calls nested as arguments, recursion
' deeper than the calls that run at once, and errors inside a callee that the caller traps.
Dim total As Long
Dim count As Integer

Function Twice(ByVal n As Integer) As Integer
    Twice = n * 2
End Function

Function Depth(ByVal n As Long) As Long
    If n = 0 Then
        Depth = 0
    Else
        Depth = Depth(n - 1) + 1
    End If
End Function

Function IsSmall(ByVal n As Long) As Boolean
    IsSmall = n < 10
End Function

Function Half(ByVal d As Double) As Double
    Half = d / 2
End Function

Sub AddTo(ByRef x As Long, ByVal d As Long)
    x = x + d
    count = count + 1
End Sub

Sub AddTwice(ByRef x As Long)
    AddTo x, 1
    AddTo x, 1
End Sub

Sub Swap(ByRef a As Double, ByRef b As Double)
    Dim t As Double
    t = a
    a = b
    b = t
End Sub

Sub Widen(ByRef small As Integer)
    small = small + 1
End Sub

Sub Main
    Dim i As Long, a As Long, k As Integer, d As Double, e As Double, ok As Boolean, big As Long
    k = Twice(7) + Twice(-3)
    Debug.Print k; TypeName(Twice(1))
    a = Depth(60) + Depth(3) * 2
    Debug.Print a
    ok = IsSmall(3) And Not IsSmall(30)
    Debug.Print ok
    a = 0
    For i = 1 To 10
        AddTo a, i
    Next i
    AddTo total, 5
    AddTwice total
    AddTwice a
    Debug.Print a; total; count
    d = 1.5
    e = 2.5
    Swap d, e
    Debug.Print d; e
    d = Half(Half(10)) + Half(i)
    Debug.Print d
    big = 1
    Widen k
    Debug.Print k
    On Error Resume Next
    k = 5
    k = Twice(20000)
    Debug.Print Err.Number; k
    Err.Clear
    a = 1
    a = Depth(5) + Twice(30000)
    Debug.Print Err.Number; a
    Debug.Print "end"
End Sub
