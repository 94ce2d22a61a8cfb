' Branch-heavy loop: Select Case and If/ElseIf chains.
Sub Main
    Dim i As Long, a As Long, b As Long, c As Long, d As Long, k As Long
    For i = 1 To 2000000
        k = i Mod 10
        Select Case k
            Case 0
                a = a + 1
            Case 1, 2
                b = b + k
            Case 3 To 5
                c = c + 2
            Case Else
                d = d + 1
        End Select
        If i Mod 3 = 0 Then
            a = a + 2
        ElseIf i Mod 3 = 1 Then
            b = b - 1
        Else
            c = c + 1
        End If
    Next i
    Debug.Print "checksum " & (a + 3 * b + 5 * c + 7 * d)
End Sub
