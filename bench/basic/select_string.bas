' Select Case and If chains over a String taken from an array.
Sub Main
    Dim names(4) As String
    Dim i As Long, s As String, a As Long, b As Long, c As Long, d As Long
    names(0) = "alpha"
    names(1) = "beta"
    names(2) = "gamma"
    names(3) = "delta"
    names(4) = "epsilon"
    For i = 1 To 1000000
        s = names(i Mod 5)
        Select Case s
            Case "alpha"
                a = a + 1
            Case "beta", "gamma"
                b = b + i Mod 7
            Case Else
                c = c + 1
        End Select
        If s = "delta" Then
            d = d + 3
        ElseIf s < "c" Then
            d = d + 1
        End If
    Next i
    Debug.Print "checksum " & (a + 3 * b + 5 * c + 7 * d)
End Sub
