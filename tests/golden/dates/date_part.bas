' DatePart for each interval, week of the year from Sunday weeks with week 1 holding 1 January
Sub Main
    Dim d As Date
    d = #12/31/2000 1:45:30 PM#
    Debug.Print DatePart("yyyy", d); DatePart("q", d); DatePart("m", d); DatePart("y", d); DatePart("d", d)
    Debug.Print DatePart("w", d); DatePart("ww", d); DatePart("h", d); DatePart("n", d); DatePart("s", d)
    Debug.Print DatePart("ww", #1/1/2000#); DatePart("ww", #1/2/2000#); DatePart("w", #1/1/2000#)
    Debug.Print DatePart("q", #3/31/2000#); DatePart("q", #4/1/2000#)
    Debug.Print TypeName(DatePart("d", d))
    Debug.Print "end"
End Sub
