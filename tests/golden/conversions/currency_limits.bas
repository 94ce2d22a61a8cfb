' Texts and Decimals at the ends of the Currency range convert exactly (rounded to four decimals with
' ties to even); one unit beyond them overflows. An exact half of the last unit goes to the even one.
Sub Try(ByVal value As Variant)
    Dim c As Currency
    On Error GoTo Failed
    c = CCur(value)
    ' The distance from the nearest whole number keeps the last digits visible.
    Debug.Print "["; value; "] "; c - Fix(c); c > 0
    Exit Sub
Failed:
    Debug.Print "["; value; "] error"; Err.Number; Err.Description
End Sub

Sub Main
    Try "922337203685477.5807"
    Try "-922337203685477.5808"
    Try "922337203685477.58"
    Try " 922337203685477.58074 "
    Try CDec("922337203685477.5807")
    Try CDec("-922337203685477.58075")
    Try "922337203685477.5808"
    Try "-922337203685477.5809"
    Try CDec("922337203685477.58075")
    Try "1E+20"
    Dim c As Currency, t As String
    t = "-922337203685477.5808"
    c = t
    Debug.Print "assigned:"; c - Fix(c); c < -922337203685477@
    Debug.Print "ties:"; CCur("0.00005"); CCur("0.00015"); CCur("-0.00025"); CCur(CDec("2.00005"))
End Sub
