' Round, Fix and Int on Decimals work on all 29 digits: ties go to the even neighbour at any number of
' places, rounding to more places than the value has leaves it as it is, and whole parts of values
' beyond 2^63 keep every digit.
Sub Main
    Dim v
    v = CDec("1.2345678901234567890123456789")
    Debug.Print "places:"; Round(v, 20); " "; Round(v, 27); " "; Round(v, 28); " "; Round(v, 40)
    Debug.Print "ties:"; Round(CDec("0.0000000000000000000000000005"), 27); " "; Round(CDec("0.0000000000000000000000000015"), 27); " "; Round(CDec("0.00000000000000000000000025"), 25); " "; Round(CDec("0.00000000000000000000000035"), 25)
    Debug.Print "ties near 0:"; Round(CDec("-2.5")); Round(CDec("-3.5")); Round(CDec("-0.4")); Round(CDec("2.675"), 2); Round(CDec("2.665"), 2); Round(CDec("1.295"), 2); " "; TypeName(Round(CDec("1.25"), 1))
    Debug.Print "largest:"; Round(CDec("1.5"), 29); " "; Round(CDec("79228162514264337593543950335"), 1); " "; Round(CDec("7922816251426433759354395033.5")); " "; Round(CDec("7922816251426433759354395032.5"))
    v = CDec("7922816251426433759354395033.5")
    Debug.Print "Fix, Int:"; Fix(v); " "; Int(v); " "; Fix(-v); " "; Int(-v)
    Debug.Print "beyond a Double:"; Fix(CDec("123456789012345678.5")); " "; Int(CDec("-123456789012345678.5")); " "; Fix(CDec("-0.5")); Int(CDec("-0.5")); Int(CDec("-2")); " "; TypeName(Fix(CDec("1.5")))
End Sub
