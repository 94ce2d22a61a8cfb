' A run-time error stops the run
Sub Main
    Dim d As Integer
    Debug.Print "before"
    Debug.Print 10 / d
    Debug.Print "after"
End Sub
