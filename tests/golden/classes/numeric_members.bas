'#Uses "lib/Counter.cls"
' Members of class instances called inside numeric statements: results used in arithmetic, methods
' called in a loop through a local and a module-level variable, a member of Nothing trapped, an
' instance replaced while the loop runs, and an overflow inside a method trapped by the caller.
Dim shared As Counter

Sub Main
    Dim c As Counter, i As Long, x As Long
    Set c = New Counter
    Set shared = New Counter
    For i = 1 To 100
        c.Add i
        shared.Add 2
    Next i
    x = c.Total() * 2 + shared.Total()
    Debug.Print x; c.Total() - shared.Total()
    On Error Resume Next
    Dim none As Counter
    x = 7
    none.Add 1
    Debug.Print Err.Number; x
    Err.Clear
    x = none.Total() + 1
    Debug.Print Err.Number; x
    Err.Clear
    For i = 1 To 4
        If i = 3 Then Set c = New Counter
        c.Add i
    Next i
    Debug.Print c.Total()
    c.Add 2147483647
    c.Add 2147483647
    Debug.Print Err.Number; c.Total()
    Set c = Nothing
    Set shared = Nothing
    Debug.Print "end"
End Sub
