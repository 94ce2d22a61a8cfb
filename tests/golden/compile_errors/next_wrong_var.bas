' A Next that names another variable than its For is refused at that name.
Sub Main
    Dim i As Integer, j As Integer
    For i = 1 To 3
    Next j
End Sub
