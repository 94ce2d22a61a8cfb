' Booleans in arithmetic: Integers (True is -1), except that / divides them into a Double; as Decimals
' they keep the value -1.
Sub Main
    Dim b As Variant, t As Boolean
    b = True: t = True
    Debug.Print TypeName(b \ b); " "; TypeName(b * b); " "; TypeName(b / b); " "; TypeName(b + b)
    Debug.Print b / b; t / t; True / True; (b + b) / b
    Debug.Print CDec(True); CDec(False); b + CDec(0); CDec(0) - b; b = CDec(-1); True * CDec(2)
End Sub
