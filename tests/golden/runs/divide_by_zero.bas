Sub Main
    Dim x As Integer, zero As Integer
    Debug.Print 1
    x = 1 \ zero
    Debug.Print 2
End Sub
