'#Uses "lib/Counter.cls"
' Method calls inside expressions and as statements: errors in an argument, in binding an argument
' and inside the method itself are trapped by the caller, and a terminator that runs when the last
' reference goes inside an expression prints in order.
Function Made(ByVal start As Long) As Counter
    Dim c As New Counter
    c.Add start
    Set Made = c
End Function

Function Twice(ByVal c As Counter) As Long
    c.Add c.Total()
    Twice = c.Total()
End Function

Sub Main
    Dim c As Counter, i As Long, d As Long
    Set c = New Counter
    c.Name = "main"
    For i = 1 To 5
        c.Add i
    Next i
    Debug.Print c.Total() + Twice(c); c.Total()
    Debug.Print Made(4).Total() * 2
    On Error GoTo Trap
    c.Add 10 \ d
    Debug.Print "after"; c.Total()
    c.Add "x"
    Debug.Print "after"; c.Total(); c.Name
    c.Add 2147483647
    Debug.Print "after"; c.Total() + Twice(c)
    Debug.Print "end"
    Exit Sub
Trap:
    Debug.Print "trapped"; Err.Number
    Resume Next
End Sub
