' Deep recursion: a Function that calls itself 2500 levels deep, 800 times over.
Option Explicit

Function Depth(n)
    If n = 0 Then
        Depth = 0
    Else
        Depth = Depth(n - 1) + n Mod 3
    End If
End Function

Sub Main
    Dim r, total
    total = 0
    For r = 1 To 800
        total = total + Depth(2500 - r)
    Next
    WScript.Echo "checksum " & total
End Sub

Main
