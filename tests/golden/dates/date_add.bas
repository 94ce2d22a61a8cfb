' DateAdd: months clamp to the month's end and keep the time; counts are rounded down; weeks are 7 days
Sub Main
    Debug.Print DateAdd("m", 1, #1/31/2024#)
    Debug.Print DateAdd("m", 1, #1/31/2001#)
    Debug.Print DateAdd("m", -1, #3/31/2024#)
    Debug.Print DateAdd("yyyy", 1, #2/29/2024#)
    Debug.Print DateAdd("q", 1, #11/30/2000#)
    Debug.Print DateAdd("m", 1, #1/31/2000 10:30:15 AM#)
    Debug.Print DateAdd("ww", 2, #1/1/2000#)
    Debug.Print DateAdd("d", 1.9, #1/1/2000#)
    Debug.Print DateAdd("d", -1.5, #1/1/2000#)
    Debug.Print DateAdd("y", 3, #12/30/2000#)
    Debug.Print DateAdd("w", 3, #1/1/2000#)
    Debug.Print DateAdd("h", 25, #1/1/2000 6:00:00 AM#)
    Debug.Print DateAdd("n", 90, #1/1/2000 11:00:00 PM#)
    Debug.Print DateAdd("s", -1, #1/1/2000#)
    Debug.Print DateAdd("D", 1, "7/4/1999")
    Debug.Print TypeName(DateAdd("d", 1, 36526))
    Debug.Print "end"
End Sub
