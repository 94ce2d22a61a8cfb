' Byte strings of odd length (ChrB, LeftB, StrConv to ANSI) keep their last byte when they are stored,
' copied, returned, joined and read from arrays and record fields.
Type Packet
    Data As String
End Type
Function G() As Variant
    G = ChrB(65)
End Function
Sub Main
    Dim s As String, t As String, v As Variant, b() As Byte, i As Long
    Dim parts(2) As String, p As Packet
    s = StrConv("ABC", vbFromUnicode)
    Debug.Print LenB(s); StrConv(s, vbUnicode)
    v = StrConv("ABC", vbFromUnicode): b = v: Debug.Print UBound(b)
    v = ChrB(65): Debug.Print LenB(v); LenB(G())
    v = LeftB("abc", 3): Debug.Print LenB(v)
    Debug.Print LenB(ChrB(65) & ChrB(66)); LenB(ChrB(65) & "x"); LenB("x" & ChrB(65))
    t = s: Debug.Print LenB(t)
    v = s: t = v: Debug.Print LenB(t)
    ' Built a byte at a time in a loop, kept in an array and a field.
    t = ""
    For i = 1 To 5
        t = t & ChrB(64 + i)
        parts(i Mod 3) = t
    Next
    p.Data = parts(2)
    s = p.Data
    Debug.Print LenB(t); StrConv(t, vbUnicode); LenB(parts(1)); LenB(parts(2)); LenB(s); StrConv(s, vbUnicode)
    If parts(2) = s Then Debug.Print "same"
    ' Text of whole characters is unchanged by all this.
    t = "abc": s = t & "d": Debug.Print s; Len(s); LenB(s)
End Sub
