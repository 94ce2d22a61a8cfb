Sub Main
    Debug.Print 1
    End If
End Sub
