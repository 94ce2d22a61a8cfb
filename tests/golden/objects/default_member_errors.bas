'#Uses "lib/Row.cls"
' An error inside a default member reached through a Variant goes to the caller's handler.
Sub Main
    Dim v As Variant
    Set v = New Row
    On Error Resume Next
    Debug.Print v(99)
    Debug.Print "read:"; Err.Number; Err.Description
    Err.Clear
    v(0) = "zero"
    Debug.Print "assigned:"; Err.Number
    Err.Clear
    v(2) = "two"
    Debug.Print "still usable:"; v(2); Err.Number
    On Error GoTo Trap
    Debug.Print v(4)
    Debug.Print "not reached"
    Exit Sub
Trap:
    Debug.Print "trapped:"; Err.Number
End Sub
