' A Variant given to a ByRef parameter of a fixed type is passed as itself: the parameter is the caller's
' cell, whatever that holds at each moment (reads see its kind, stores convert to the parameter's type),
' also when the cell changes under the callee, when the parameter is passed on, and in loops and
' register-run arithmetic. An element of a Variant array goes the same way.
Dim g

Sub IncL(x As Long)
    x = x + 1
End Sub
Sub Twice(x As Long)
    IncL x
    IncL x
End Sub
Sub Append(s As String)
    s = s & "a"
End Sub
Sub ChangeUnder(s As String)
    g = 5
    s = s & "z"
End Sub
Sub ChangeUnderLong(x As Long)
    g = "text"
    x = 9
End Sub
Sub Look(x As Long)
    Debug.Print "look"; x; TypeName(x)
End Sub
Sub Loop3(x As Long)
    For x = 1 To 3
    Next
End Sub
Sub SetMid(s As String)
    Mid(s, 1, 1) = "X"
End Sub
Sub Flip(b As Boolean)
    b = Not b
End Sub
Sub Halve(d As Double)
    d = d / 2
End Sub
Sub SetNothing(o As Object)
    Set o = Nothing
End Sub
Function SumTo(n As Long) As Long
    Dim i As Long, t As Long
    For i = 1 To 100
        t = t + n
        n = n + 1
    Next
    SumTo = t
End Function

Sub Main
    Dim v, s, b, d, e
    v = 5: IncL v: Debug.Print v
    v = 5: Twice v: Debug.Print v
    v = 2.5: IncL v: Debug.Print v
    v = "12": IncL v: Debug.Print v
    v = "abc"
    On Error Resume Next
    IncL v
    Debug.Print Err.Number; v
    On Error GoTo 0
    s = 7: Append s: Debug.Print s
    s = Null: Append s: Debug.Print s
    g = "q": ChangeUnder g: Debug.Print g
    g = 1: ChangeUnderLong g: Debug.Print g
    v = 3: Look v
    Look e
    v = "x": Loop3 v: Debug.Print v
    s = "abc": SetMid s: Debug.Print s
    b = 0: Flip b: Debug.Print b
    d = 5: Halve d: Debug.Print d
    Set v = CreateObject("Scripting.Dictionary"): SetNothing v: Debug.Print TypeName(v)
    v = 10: Debug.Print SumTo(v); v
    v = 10&: Debug.Print SumTo(v); v
    Dim arr(3)
    arr(2) = 1: Twice arr(2): Debug.Print arr(2)
    Debug.Print "end"
End Sub
