' Assigning to the name of another procedure is refused: only the procedure being compiled has a result
' variable under its own name.
Function Twice(n)
    Twice = n * 2
End Function

Sub Main
    Debug.Print Twice(2)
    Twice = 1
End Sub
