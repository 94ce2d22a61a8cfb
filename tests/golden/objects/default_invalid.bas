'#Uses "lib/Counter.cls"
' Assigning a value to an object of a class without a default member is refused when compiling.
Sub Main
    Dim c As New Counter
    c = 5
End Sub
