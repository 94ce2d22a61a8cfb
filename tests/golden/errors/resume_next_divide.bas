' On Error Resume Next: a division by zero is skipped and Err keeps it
Sub Main
    Dim x As Integer, zero As Integer
    On Error Resume Next
    x = 7
    x = 1 \ zero
    Debug.Print "continued"; x
    Debug.Print Err.Number; Err.Description
    Debug.Print Err
    Debug.Print "end"
End Sub
