' DateDiff in each interval; weeks start on Sunday; exchanging the dates negates every result
Sub Both(interval As String, a As Date, b As Date)
    Debug.Print interval; DateDiff(interval, a, b); DateDiff(interval, b, a)
End Sub

Sub Main
    Both "yyyy", #12/31/2000#, #1/1/2001#
    Both "yyyy", #1/1/2000#, #12/31/2000#
    Both "q", #3/31/2000#, #4/1/2000#
    Both "q", #11/30/2000#, #2/1/2001#
    Both "m", #1/31/2000#, #2/1/2000#
    Both "y", #1/1/2000 11:59:00 PM#, #1/2/2000 12:01:00 AM#
    Both "d", #1/1/2000 11:59:00 PM#, #1/2/2000 12:01:00 AM#
    Both "d", #1/1/2000 12:01:00 AM#, #1/1/2000 11:59:00 PM#
    Both "w", #1/1/2000#, #1/2/2000#
    Both "ww", #1/1/2000#, #1/2/2000#
    Both "w", #1/1/2000#, #1/15/2000#
    Both "ww", #1/2/2000#, #1/8/2000#
    Both "ww", #1/1/2000#, #1/9/2000#
    Both "h", #1/1/2000 11:59:00 PM#, #1/2/2000 12:01:00 AM#
    Both "n", #1/1/2000 11:59:00 PM#, #1/2/2000 12:01:00 AM#
    Both "s", #1/1/2000 11:59:00 PM#, #1/2/2000 12:01:00 AM#
    Debug.Print TypeName(DateDiff("d", #1/1/2000#, #1/2/2000#))
    On Error Resume Next
    Debug.Print DateDiff("s", #1/1/1900#, #1/1/2000#)
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
