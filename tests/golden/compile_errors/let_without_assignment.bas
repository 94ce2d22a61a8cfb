' Let must be followed by an assignment.
Sub Main
    Dim x
    Let x
End Sub
