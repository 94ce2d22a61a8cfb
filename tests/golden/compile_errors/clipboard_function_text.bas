' Clipboard sets its text as an instruction; as a function it takes no argument.
Sub Main
    Dim s As String
    s = Clipboard("text")
End Sub
