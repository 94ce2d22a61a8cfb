' Date patterns: codes for day, month, year, hour, minute, second, markers, locale pictures
Sub Main
    Dim d As Date
    d = #1/1/2000 1:45:30 PM#
    Debug.Print Format(d, "yyyy-mm-dd hh:nn:ss")
    Debug.Print Format(d, "mmm mmmm ddd dddd q y yy")
    Debug.Print Format(#7/4/2000 9:05:07 AM#, "m/d/yy h:n:s"); Format(#7/4/2000 9:05:07 AM#, "h:mm mm")
    Debug.Print Format(d, "h:m:s AM/PM"); Format(d, "h:m:s am/pm"); Format(d, "h:m:s a/p"); Format(#1:45:30 AM#, "A/P hh")
    Debug.Print Format(#12:05:00 AM#, "hh:nn AMPM"); Format(d, "c x"); Format(0.5, "c")
    Debug.Print Format(d, "dddddd"); Format(d, "ddddd"); Format(d, "ttttt")
    Debug.Print Format(#1/1/2000 12:00:59 PM# + 0.75 / 86400, "hh:nn:ss")
    Debug.Print Format(#1/1/2000#, """Day ""d\-mm")
    Debug.Print Format("1/1/2000", "yyyy"); Format("abc", "yyyy"); Format(36526, "yyyy"); Format(Null, "yyyy")
    Debug.Print "end"
End Sub
