' Variants whose kinds change while a loop runs: Integer sums that become Longs, Longs that become
' Doubles, a counter that passes the Integer limit, a Variant that takes a string and then a number
' again, module-level Variants, and Integer subexpressions used as Longs.
Dim total

Sub Bump(ByRef v)
    v = v + 1
End Sub

Sub Main
    Dim i, s, t, big, mixed, k As Integer, l As Long
    s = 0
    t = 0
    big = 1
    total = 0
    For i = 32760 To 32775 Step 5
        s = s + i
        t = t * 2 + (i Mod 3)
        total = total + i \ 7
        Debug.Print i; TypeName(i); s; TypeName(s); t; TypeName(t)
    Next i
    For i = 1 To 40
        big = big * 3
    Next i
    Debug.Print big; TypeName(big)
    For i = 1 To 6
        If i = 3 Then mixed = "text" Else mixed = i * 10000
        Debug.Print TypeName(mixed);
    Next i
    Debug.Print
    k = 200
    l = k * k + 1
    mixed = k * k
    Debug.Print l; mixed; TypeName(mixed); total; TypeName(total)
    s = 32767
    Bump s
    Debug.Print s; TypeName(s)
    Debug.Print "end"
End Sub
