' Abs, Fix, Int, Sgn and the runtime library's functions.
Sub Main
    Dim i As Integer
    i = -32768
    Debug.Print Abs(i); Abs(-2.5); Abs(Null); Int(-2.5); Fix(-2.5); Int(2.5); Int(7)
    Debug.Print Sgn(-3); Sgn(0); Sgn(2.5); Sgn(True)
    Debug.Print Sqr(16); Exp(0); Log(1); Sin(0); Cos(0); Tan(0); Atn(1) * 4
    Debug.Print Sqr(-1)
    Debug.Print "not reached"
End Sub
