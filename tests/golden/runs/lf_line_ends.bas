' Lines ended by LF alone are read like CR LF lines.
Sub Main
    Dim i As Integer
    For i = 1 To 2
        Debug.Print i
    Next
    Debug.Print "done"
End Sub
