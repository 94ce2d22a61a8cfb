' Variants whose kinds go back and forth many times in one loop: a counter reset to an Integer that
' grows past the Integer range, a product passing the Long range and coming back, \, Mod, * and / over
' them, and the limits where the kinds change (32767 + 1, 2147483647 + 1, -32768 * -1, -32768 \ -1),
' zero divisors and Null operands met after the statements have had their forms.
Sub Main
    Dim i, n, big, q, r, half, total, kinds, previous, w
    total = 0
    kinds = ""
    previous = ""
    For i = 1 To 120000
        If i Mod 6000 = 1 Then n = 32700 + (i Mod 7)
        n = n + 7
        q = n \ 7
        r = n Mod 11
        big = n * 60000
        half = n / 4
        total = total + q - r + big / 100000 + half
        w = TypeName(n) & TypeName(q) & TypeName(r) & TypeName(big)
        If w <> previous Then
            kinds = kinds & " " & w
            previous = w
        End If
    Next i
    Debug.Print total; TypeName(total)
    Debug.Print Len(kinds); Left(kinds, 120)
    ' The limits, each statement run many times before and after the change.
    Dim a, b, c, d, e, m
    For i = 1 To 30
        a = 32757 + (i Mod 12)
        b = a + 1
        c = -32767 - 1 + (i Mod 3)
        d = c * -1
        e = c \ -1
        m = 2147483637 + (i Mod 12)
        m = m + 1
        If i Mod 12 >= 10 Or i Mod 12 = 0 Then Debug.Print a; TypeName(a); b; TypeName(b); d; TypeName(d); e; TypeName(e); m; TypeName(m)
    Next i
    For i = 1 To 24
        a = -2147483647 - (i Mod 3)
        b = a * -1
        c = a - 1
        If i Mod 8 = 0 Then Debug.Print b; TypeName(b); c; TypeName(c)
    Next i
    ' Zero divisors, a quotient outside the Long range and Null operands after many passes with the forms.
    On Error Resume Next
    For i = 1 To 12
        a = -2147483647 - (i Mod 2)
        d = 0
        d = a \ -1
        If Err.Number <> 0 Then Debug.Print i; "overflow"; Err.Number; d: Err.Clear
    Next i
    For i = 1 To 40
        n = 10 - (i Mod 10)
        If i > 30 Then n = Null
        q = 0
        r = 0
        q = 100 \ (n - 1)
        If Err.Number <> 0 Then Debug.Print i; "\ error"; Err.Number: Err.Clear
        r = 100 Mod (n - 1)
        If Err.Number <> 0 Then Debug.Print i; "Mod error"; Err.Number: Err.Clear
        big = n * 3 + q - r
        If i Mod 10 = 1 Or i > 38 Then Debug.Print i; q; r; big; TypeName(big)
    Next i
End Sub
