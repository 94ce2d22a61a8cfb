' Line Input # reads into a variable, an array element or a record field, not a value.
Sub Main
    Dim s As String
    Line Input #1, Trim(s)
End Sub
