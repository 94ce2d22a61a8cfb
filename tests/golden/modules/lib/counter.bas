Public Count As Long

Private Sub Main
    Count = 41
    Debug.Print Count
End Sub

Public Sub Bump()
    Count = Count + 1
    Debug.Print Count
End Sub
