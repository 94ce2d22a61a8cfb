' A GoTo whose label is never written
Sub Main
    Debug.Print 1
    GoTo Nowhere
End Sub
