' Runaway recursion stops with Overflow at the call depth limit; an outer handler traps it
Dim depth As Long

Sub Deeper
    depth = depth + 1
    Deeper
End Sub

Sub Main
    On Error GoTo Trap
    Deeper
    Debug.Print "never printed"
    Exit Sub
Trap:
    Debug.Print Err.Number; Err.Description; depth > 30000
    Debug.Print "end"
End Sub
