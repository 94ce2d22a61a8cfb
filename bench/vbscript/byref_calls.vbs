' Many small procedure calls with by-reference arguments.
Option Explicit
Sub Bump(ByRef x, ByVal d)
    x = x + d
    If x >= 1000000 Then x = x - 1000000
End Sub

Sub Swap(ByRef a, ByRef b)
    Dim t
    t = a
    a = b
    b = t
End Sub


Sub Main
    Dim i, a, b
    a = 1
    b = 2
    For i = 1 To 1000000
        Bump a, i
        Swap a, b
    Next
    WScript.Echo "checksum " & (a * 3 + b)
End Sub

Main
