' The named format Medium Date raises 10620
Sub Main
    Debug.Print Format(#1/1/2000#, "Short Date")
    Debug.Print Format(#1/1/2000#, "Medium Date")
    Debug.Print "not reached"
End Sub
