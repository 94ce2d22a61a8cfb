' A seventh dimension is refused when the procedure is compiled
Sub Main
    Dim a(1, 1, 1, 1, 1, 1, 1) As Integer
End Sub
