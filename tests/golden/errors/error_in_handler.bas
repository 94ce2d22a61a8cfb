' An error inside a running handler goes to the caller's handler
Sub Inner
    On Error GoTo Oops
    Err.Raise 5
    Exit Sub
Oops:
    Debug.Print "inner handler"; Err.Number
    Err.Raise 6
    Debug.Print "never printed"
End Sub

Sub Main
    On Error GoTo Outer
    Inner
    Debug.Print "after inner"
    Debug.Print "end"
    Exit Sub
Outer:
    Debug.Print "outer handler"; Err.Number
    Resume Next
End Sub
