Sub Main
    Dim x As Integer
    Debug.Print 1
    x = 1 \ 0
    Debug.Print 2
End Sub
