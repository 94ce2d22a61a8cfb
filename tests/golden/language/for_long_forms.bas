' For loops over Long counters: bounds and steps from variables, expressions, Variants and calls,
' loops that never run, bounds that read the counter, steps of 0 and below, Integer sums that leave
' the Integer range, Variant bounds of other kinds, and a counter that overflows at its Next.
Dim calls As Long

Function StepOf(ByVal n As Long) As Long
    calls = calls + 1
    StepOf = n
End Function

Sub Main
    Dim i As Long, j As Long, k As Long, total As Long, by As Long, last As Long
    Dim a As Integer, b As Integer, v
    by = 3
    last = 10
    For i = 1 To last Step by
        Debug.Print i;
    Next i
    Debug.Print "|"; i
    by = -4
    For i = last To -last Step by
        Debug.Print i;
    Next i
    Debug.Print "|"; i
    For i = 5 To 1
        Debug.Print "never";
    Next i
    Debug.Print "up, none:"; i
    by = -1
    For i = 1 To 5 Step by
        Debug.Print "never";
    Next i
    Debug.Print "down, none:"; i
    by = 0
    k = 0
    For i = 7 To 9 Step by
        k = k + 1
        If k = 4 Then Exit For
    Next i
    Debug.Print "step 0:"; i; k
    i = 5
    For i = 3 To i + 10 Step 5
        Debug.Print i;
    Next i
    Debug.Print "| end read the new counter"
    a = 30000
    b = 30000
    For i = a + b To a + b + 2
        Debug.Print i;
    Next i
    Debug.Print
    v = 2.5
    For i = 1 To v
        Debug.Print i;
    Next i
    v = 3.5
    For i = 1 To v
        Debug.Print i;
    Next i
    v = "2"
    For i = 0 To v
        Debug.Print i;
    Next i
    Debug.Print
    For i = 1 To 10 Step StepOf(4)
        Debug.Print i;
    Next i
    Debug.Print "| calls:"; calls
    total = 0
    For i = 1 To 200
        For j = i To 200 Step i
            total = total + j Mod 7
        Next j
    Next i
    Debug.Print "nested:"; total
    For i = 1 To 10
        If i = 2 Then i = 8
        Debug.Print i;
    Next i
    Debug.Print
    On Error GoTo Overflowed
    For i = 2147483640 To 2147483647 Step 5
        Debug.Print i;
    Next i
    Debug.Print "not reached"
    Exit Sub
Overflowed:
    Debug.Print "| error"; Err.Number; i
    Resume Continue
Continue:
    On Error GoTo NullBound
    v = Null
    For i = 1 To v
        Debug.Print "never"
    Next i
    Exit Sub
NullBound:
    Debug.Print "Null bound: error"; Err.Number
End Sub
