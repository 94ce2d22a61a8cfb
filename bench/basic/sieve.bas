' Array sieve: primes below a bound, counted several times over a Boolean array.
Sub Main
    Const n As Long = 600000
    Dim composite() As Boolean
    Dim i As Long, j As Long, count As Long, pass As Long, total As Long
    total = 0
    For pass = 1 To 2
        ReDim composite(n)
        count = 0
        For i = 2 To n
            If Not composite(i) Then
                count = count + 1
                For j = i + i To n Step i
                    composite(j) = True
                Next j
            End If
        Next i
        total = total + count
    Next pass
    Debug.Print "checksum " & total
End Sub
