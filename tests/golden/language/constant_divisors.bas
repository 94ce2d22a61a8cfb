' Integer division and Mod by constants, in typed and Variant statements, against the same operations by
' a divisor held in a variable; values across the whole range and at its ends.
Function Check(ByVal x As Long) As Long
    Dim d As Long, bad As Long
    d = 7
    If x \ 7 <> x \ d Or x Mod 7 <> x Mod d Then bad = bad + 1
    d = 3
    If x \ 3 <> x \ d Or x Mod 3 <> x Mod d Then bad = bad + 1
    d = 10
    If x \ 10 <> x \ d Or x Mod 10 <> x Mod d Then bad = bad + 1
    d = 1000003
    If x \ 1000003 <> x \ d Or x Mod 1000003 <> x Mod d Then bad = bad + 1
    d = 65536
    If x \ 65536 <> x \ d Or x Mod 65536 <> x Mod d Then bad = bad + 1
    d = 2147483647
    If x \ 2147483647 <> x \ d Or x Mod 2147483647 <> x Mod d Then bad = bad + 1
    Check = bad
End Function

Sub Main
    Dim x As Long, i As Long, bad As Long, s As Integer, v
    ' A spread over the whole Long range, both signs.
    x = 12345
    For i = 1 To 3000
        x = ((x And &HFFFFF) * 2003 + i * 7919) Xor (i * 65599)
        bad = bad + Check(x) + Check(-x)
    Next i
    bad = bad + Check(2147483647) + Check(-2147483647) + Check(-2147483647 - 1) + Check(0) + Check(-1) + Check(1)
    Debug.Print "mismatches"; bad
    ' Variant statements get their forms for the kinds their Variants hold: Integers, then Longs.
    Dim a, q, r, dv, vbad, kinds
    dv = 13
    vbad = 0
    For i = -40000 To 40000 Step 37
        a = CInt(i \ 2)
        q = a \ 13
        r = a Mod 13
        If q <> a \ dv Or r <> a Mod dv Or q * 13 + r <> a Then vbad = vbad + 1
        If i = -40000 Then kinds = TypeName(a) & " " & TypeName(q)
        a = i * 53
        q = a \ 13
        r = a Mod 13
        If q <> a \ dv Or r <> a Mod dv Or q * 13 + r <> a Then vbad = vbad + 1
    Next i
    Debug.Print "variant mismatches"; vbad; kinds; " "; TypeName(a); " "; TypeName(q)
    x = -2147483647 - 1
    Debug.Print x \ 7; x Mod 7; x \ 2; x Mod 2; x \ 2147483647; x Mod 2147483647
    x = 2147483647
    Debug.Print x \ 7; x Mod 7; x \ 10; x Mod 10
    Debug.Print -17 \ 5; -17 Mod 5; 17 \ 5; 17 Mod 5; -1 \ 3; -1 Mod 3
    ' Integers.
    s = -32768
    Debug.Print s \ 3; s Mod 3; s \ 256; s Mod 256
    s = 32767
    Debug.Print s \ 3; s Mod 3
    ' Variants that hold Integers, Longs and Doubles (rounded first).
    v = -100
    Debug.Print v \ 7; v Mod 7
    v = -1234567
    Debug.Print v \ 7; v Mod 7
    v = -7.5
    Debug.Print v \ 3; v Mod 3
    ' Division by one, and by constants below it, keep their own rules.
    x = -2147483647 - 1
    Debug.Print x \ 1; x Mod 1; 9 \ -2; 9 Mod -2
    On Error Resume Next
    Debug.Print x \ -1
    Debug.Print "error"; Err.Number
End Sub
