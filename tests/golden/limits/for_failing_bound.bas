' A For whose end or step fails, resumed past by On Error Resume Next: the start is already in the
' counter and the loop ends at its first Next instead of running forever.
Sub Main
    Dim zero, i, j As Integer, k As Long
    zero = 0
    On Error Resume Next
    For i = 1 To 1 / zero
        Debug.Print "body"; i; Err.Number
    Next
    Debug.Print "after"; i
    Err.Clear
    For j = 5 To 10 Step 1 / zero
        Debug.Print "body"; j; Err.Number
    Next j
    Debug.Print "after"; j
    Err.Clear
    ' A failing start leaves the counter as it was.
    k = 7
    For k = 1 / zero To 3
        Debug.Print "body"; k
    Next
    Debug.Print "after"; k
End Sub
