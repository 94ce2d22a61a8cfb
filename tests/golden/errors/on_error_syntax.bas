' On Error Resume needs Next
Sub Main
    On Error Resume
End Sub
