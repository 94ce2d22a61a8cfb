' MonthName and WeekdayName give the locale's names, abbreviated on request; other numbers raise 10620
Sub Main
    Debug.Print MonthName(1); MonthName(12, True); MonthName(9, False)
    Debug.Print WeekdayName(1); WeekdayName(7, True); WeekdayName(4)
    On Error Resume Next
    Debug.Print MonthName(13)
    Debug.Print Err.Number
    Err.Clear
    Debug.Print WeekdayName(0)
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
