' Select Case and If chains over a string taken from an array.
Option Explicit

Sub Main
    Dim names, i, s, a, b, c, d
    ReDim names(4)
    names(0) = "alpha"
    names(1) = "beta"
    names(2) = "gamma"
    names(3) = "delta"
    names(4) = "epsilon"
    a = 0
    b = 0
    c = 0
    d = 0
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
    Next
    WScript.Echo "checksum " & (a + 3 * b + 5 * c + 7 * d)
End Sub

Main
