' A module-level Const takes the whole line: text after its value is refused, not dropped.
Const Limit = 10 20

Sub Main
    Debug.Print Limit
End Sub
