' Year to Second and Weekday: parts at the nearest second, Null gives Null, text is read as a date
Sub Main
    Dim t As Date
    t = #1/1/2000 12:00:59 PM# + 0.75 / 86400
    Debug.Print Hour(t); Minute(t); Second(t)
    t = #12/31/1999 11:59:59 PM# + 0.6 / 86400
    Debug.Print Year(t); Month(t); Day(t); Hour(t); Minute(t); Second(t)
    Debug.Print Weekday(#1/1/2000#); Weekday(#1/2/2000#); Weekday(0)
    Debug.Print Year("7/4/1999"); Month("7/4/1999"); Day("7/4/1999")
    Debug.Print Year(Null); TypeName(Month(Null)); TypeName(Day(#1/1/2000#))
    Debug.Print Year(36526)
    On Error Resume Next
    Debug.Print Year("not a date")
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
