Sub Main
End Sub
