' Resume needs Next or a label
Sub Main
    On Error Resume Next
    Resume
End Sub
