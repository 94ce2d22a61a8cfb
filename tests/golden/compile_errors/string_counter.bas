' A For counter must be a numeric variable; the error points at the counter.
Sub Main
    Dim s As String
    For s = 1 To 3
    Next
End Sub
