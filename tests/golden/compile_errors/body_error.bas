Sub Main
    Debug.Print 1 +
End Sub
