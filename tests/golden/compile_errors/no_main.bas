Sub Helper
End Sub
