' Recursive Functions
Function Factorial(ByVal n As Integer) As Long
    If n <= 1 Then
        Factorial = 1
    Else
        Factorial = n * Factorial(n - 1)
    End If
End Function

Function Fib(ByVal n As Integer) As Long
    If n < 2 Then Fib = n Else Fib = Fib(n - 1) + Fib(n - 2)
End Function

Sub Main
    Debug.Print Factorial(1); Factorial(5); Factorial(10)
    Debug.Print Fib(0); Fib(1); Fib(10); Fib(20)
    Debug.Print "end"
End Sub
