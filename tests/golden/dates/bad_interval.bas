' An interval text that is none of the ten codes stops the macro with 10620
Sub Main
    Debug.Print DateDiff("d", #1/1/2000#, #1/3/2000#)
    Debug.Print DateDiff("days", #1/1/2000#, #1/3/2000#)
    Debug.Print "not reached"
End Sub
