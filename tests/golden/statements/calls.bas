' Subs and Functions: ByRef, ByVal, Optional, named arguments, recursion
Function Fib(ByVal n As Integer) As Long
    If n < 2 Then
        Fib = n
    Else
        Fib = Fib(n - 1) + Fib(n - 2)
    End If
End Function

Sub Swap(a As Integer, b As Integer)
    Dim t As Integer
    t = a: a = b: b = t
End Sub

Sub Greet(name As String, Optional greeting As String = "Hello")
    Debug.Print greeting & ", " & name
End Sub

Sub Main
    Dim p As Integer, q As Integer
    p = 1: q = 2
    Swap p, q
    Debug.Print p; q
    Debug.Print Fib(15)
    Greet "world"
    Greet greeting:="Bye", name:="all"
End Sub
