' DateValue and TimeValue keep the date part or the time part of a text read as a date
Sub Main
    Debug.Print DateValue("7/4/1999 1:30 PM"); TimeValue("7/4/1999 1:30 PM")
    Debug.Print DateValue(#1/1/2000 6:00:00 AM#); CDbl(TimeValue("6:00 AM"))
    Debug.Print TypeName(DateValue("1/1/2000")); TypeName(TimeValue("1:00"))
    On Error Resume Next
    Debug.Print DateValue("no date")
    Debug.Print Err.Number
    Err.Clear
    Debug.Print TimeValue(Null)
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
