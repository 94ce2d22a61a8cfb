' The last Next of an Integer counter ending at 32767 leaves the counter's kind.
Sub Main
    Dim i As Integer
    For i = 32766 To 32767
        Debug.Print i
    Next i
    Debug.Print "not reached"
End Sub
