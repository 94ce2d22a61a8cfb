' Recursive calls: a typed Function calling itself.
Function Fib(ByVal n As Long) As Long
    If n < 2 Then
        Fib = n
    Else
        Fib = Fib(n - 1) + Fib(n - 2)
    End If
End Function

Sub Main
    Debug.Print "checksum " & Fib(30)
End Sub
