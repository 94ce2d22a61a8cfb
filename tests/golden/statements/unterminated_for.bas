' Block errors are compile errors
Sub Main
    Dim i As Integer
    For i = 1 To 3
        Debug.Print i
End Sub
