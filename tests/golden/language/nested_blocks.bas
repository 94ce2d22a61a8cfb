' Every block statement kind nested inside the others
Sub Main
    Dim i As Integer, j As Integer, n As Integer
    n = 0
    Do While n < 2
        n = n + 1
        For i = 1 To 2
            j = 0
            While j < 2
                j = j + 1
                If j = 1 Then
                    Select Case i
                        Case 1
                            Debug.Print n; i; j; "one"
                        Case Else
                            Debug.Print n; i; j; "other"
                    End Select
                ElseIf i = 2 Then
                    Debug.Print n; i; j; "second"
                Else
                    Do
                        Debug.Print n; i; j; "inner"
                    Loop Until True
                End If
            Wend
        Next i
    Loop
    Debug.Print "end"
End Sub
