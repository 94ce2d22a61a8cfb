' Untyped loops: the same arithmetic on Variant variables.
Sub Main
    Dim i, s, t, d, e
    s = 0
    t = 0
    d = 0
    e = 0
    For i = 1 To 3000000
        s = (s + i * 7) Mod 1000003
        t = t + (i And 255) - 100
        d = d + (i Mod 7) * 0.5
        e = e * 0.5 + i
    Next i
    Debug.Print "checksum " & (s + t + Int(d) + Int(e) Mod 1000)
End Sub
