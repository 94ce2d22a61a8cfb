' Exit For inside a Do inside a For leaves the For, not only the Do
Sub Main
    Dim i As Integer, k As Integer
    For i = 1 To 5
        k = 0
        Do
            k = k + 1
            If i = 3 Then Exit For
            If k = 2 Then Exit Do
        Loop
        Debug.Print i; k
    Next i
    Debug.Print "after"; i
End Sub
