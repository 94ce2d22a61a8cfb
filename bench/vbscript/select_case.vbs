' Branch-heavy loop: Select Case and If/ElseIf chains.
Option Explicit

Sub Main
    Dim i, a, b, c, d, k
    a = 0
    b = 0
    c = 0
    d = 0
    For i = 1 To 2000000
        k = i Mod 10
        Select Case k
            Case 0
                a = a + 1
            Case 1, 2
                b = b + k
            Case 3, 4, 5
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
    Next
    WScript.Echo "checksum " & (a + 3 * b + 5 * c + 7 * d)
End Sub

Main
