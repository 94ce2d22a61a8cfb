' Array sieve.
Option Explicit

Sub Main
    Const n = 600000
    Dim composite, i, j, count, pass, total
    total = 0
    For pass = 1 To 2
        ReDim composite(n)
        count = 0
        For i = 2 To n
            If Not composite(i) Then
                count = count + 1
                For j = i + i To n Step i
                    composite(j) = True
                Next
            End If
        Next
        total = total + count
    Next
    WScript.Echo "checksum " & total
End Sub

Main
