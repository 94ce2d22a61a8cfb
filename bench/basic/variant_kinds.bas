' Untyped Variant arithmetic whose kinds change as the loop runs: an Integer counter growing into a
' Long, a Long product growing into a Double, with \, Mod, * and /.
Sub Main
    Dim i, n, big, q, r, half, total
    total = 0
    For i = 1 To 2000000
        If i Mod 50000 = 1 Then n = 1
        n = n + 3
        q = n \ 7
        r = n Mod 11
        big = n * 100000
        half = n / 4
        total = total + q - r + big / 100000 + half
    Next i
    Debug.Print "checksum " & Int(total)
End Sub
