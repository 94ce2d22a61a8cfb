' Print # writes simple values only.
Sub Main
    Dim a(3) As Integer
    Print #1, a
End Sub
