Public Total As Integer

Public Sub Bump()
End Sub
