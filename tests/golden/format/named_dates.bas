' Named date and time formats (Medium Date is not supported: see medium_date.bas)
Sub Main
    Dim d As Date
    d = #1/1/2000 1:45:30 PM#
    Debug.Print Format(d, "General Date"); Format(#1/1/2000#, "General Date"); Format(0.5, "General Date")
    Debug.Print Format(d, "Long Date")
    Debug.Print Format(d, "Short Date"); Format("7/4/1999", "short date"); Format(36526, "Short Date")
    Debug.Print Format(d, "Long Time"); Format(d, "Medium Time"); Format(#1/1/2000#, "Medium Time")
    Debug.Print Format(d, "Short Time"); Format(#9:05:00 AM#, "Short Time")
    Debug.Print "end"
End Sub
