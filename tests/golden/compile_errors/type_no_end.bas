Type Point
    X As Integer

Sub Main
End Sub
