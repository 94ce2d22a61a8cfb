'#Uses "lib/Counter.cls"
' A member call on a variable that holds Nothing stops the run.
Sub Main
    Dim c As Counter
    Debug.Print "calling"
    c.Add 1
    Debug.Print "not reached"
End Sub
