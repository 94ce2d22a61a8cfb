Public InnerValue As Long

Private Sub Main
    Debug.Print "inner set up"
    InnerValue = 5
End Sub
