'#Uses "lib/Counter.cls"
' Members that the class does not have are refused when compiling.
Sub Main
    Dim c As New Counter
    c.Subtract 1
End Sub
