'#Uses "lib/Counter.cls"
' Methods, a function and properties of a class instance made with Set ... = New.
Sub Main
    Dim c As Counter
    Set c = New Counter
    c.Name = "first"
    c.Add 5
    c.Add(2)
    Debug.Print c.Name; " total"; c.Total()
    Dim x As Long
    x = c.Total + 10
    Debug.Print x
    Set c = Nothing
    Debug.Print "done"
End Sub
