' For, Do, While and Exit
Sub Main
    Dim i As Integer, total As Long
    For i = 10 To 1 Step -3
        Debug.Print i;
    Next i
    Debug.Print
    Dim x As Double
    For x = 0.5 To 2 Step 0.5
        Debug.Print x;
    Next
    Debug.Print
    Do While total < 20
        total = total + 7
    Loop
    Debug.Print total
    Do
        total = total - 1
        If total = 15 Then Exit Do
    Loop
    Debug.Print total
    While i < 3
        i = i + 1
    Wend
    Debug.Print i
End Sub
