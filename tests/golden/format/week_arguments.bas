' The w and ww codes with each first day of week (1 Sunday, 2 Monday, 7 Saturday) and first week of year
' (1 the week of 1 January, 2 the first week with four days, 3 the first full week)
Sub Main
    Debug.Print Format(#1/2/2000#, "w"); Format(#1/2/2000#, "w", 2); Format(#1/7/2000#, "w", 7)
    Debug.Print Format(#1/2/2000#, "ww"); Format(#12/31/2000#, "ww")
    Debug.Print Format(#1/2/2000#, "ww", 2, 1); Format(#1/3/2000#, "ww", 2, 1)
    Debug.Print Format(#1/2/2000#, "ww", 2, 2); Format(#1/3/2000#, "ww", 2, 2)
    Debug.Print Format(#1/1/2005#, "ww", 2, 2); Format(#12/29/2008#, "ww", 2, 2)
    Debug.Print Format(#1/1/2000#, "ww", 1, 3); Format(#1/2/2000#, "ww", 1, 3)
    Debug.Print Format(#1/1/2006#, "ww", 2, 3); Format(#1/2/2006#, "ww", 2, 3)
    On Error Resume Next
    Debug.Print Format(#1/2/2000#, "w", 8)
    Debug.Print Err.Number
    Err.Clear
    Debug.Print Format(#1/2/2000#, "ww", 1, 4)
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
