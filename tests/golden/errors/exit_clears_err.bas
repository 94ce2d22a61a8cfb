' Exit Sub and Exit Function from a handler end handler mode and clear Err
Sub Handled
    On Error GoTo Oops
    Err.Raise 7
    Exit Sub
Oops:
    Debug.Print "handling"; Err.Number
    Exit Sub
End Sub

Function Safe(d As Integer) As Integer
    On Error GoTo Oops
    Safe = 100 \ d
    Exit Function
Oops:
    Safe = -1
    Exit Function
End Function

Sub Main
    Handled
    Debug.Print "after sub"; Err.Number; Err.Description
    Debug.Print Safe(4); Safe(0); Err.Number
    Debug.Print "end"
End Sub
