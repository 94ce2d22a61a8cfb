' Now, Date, Time and Timer read the local clock: kinds, ranges and agreement (not exact values)
Sub Main
    Dim n As Date, d As Date, t As Date, s As Single
    d = Date
    n = Now
    t = Time
    s = Timer
    Debug.Print TypeName(Now); TypeName(Date); TypeName(Time); TypeName(Timer)
    Debug.Print d = Int(d); Year(d) >= 2020; Year(d) <= 9999
    Debug.Print n >= d; n < d + 2
    Debug.Print t >= 0; t < 1; CDbl(t) = CDbl(t) - Int(CDbl(t))
    Debug.Print Abs((n - Int(n)) - t) * 86400 < 5 Or Abs((n - Int(n)) - t) * 86400 > 86395
    Debug.Print s >= 0; s < 86400
    Debug.Print Abs(s - t * 86400) < 5 Or Abs(s - t * 86400) > 86395
    Debug.Print n - Int(n) = TimeValue(n); Int(n) = DateValue(n)
    Debug.Print "end"
End Sub
