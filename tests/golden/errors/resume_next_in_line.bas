' Resume Next continues with the statement after the failing one, also within a line of several
' statements, after a failing call, and inside a loop written on one line.
Function Fails(ByVal n As Integer) As Integer
    Fails = 10 \ n
End Function

Sub Handled()
    Dim a As Integer
    On Error GoTo Recover
    a = 1: a = a \ 0: Debug.Print "after the failure"; a
    Debug.Print "next line"
    Exit Sub
Recover:
    Debug.Print "handler"; Err.Number
    Resume Next
End Sub

Sub Main
    Dim x As Integer, i As Integer, zero As Integer
    On Error Resume Next
    x = 1 / zero: Debug.Print "same line"; Err.Number
    Err.Clear
    x = Fails(0): Debug.Print "after the call"; Err.Number
    Err.Clear
    For i = 1 To 3: x = i \ (i - 2): Debug.Print i; x: Next
    Debug.Print "loop done"; Err.Number
    Err.Clear
    x = 5: x = x / 0
    Debug.Print "last on its line"; x; Err.Number
    Handled
End Sub
