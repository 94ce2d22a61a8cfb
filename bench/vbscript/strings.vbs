' String building and searching: concatenation, Len, Mid and InStr.
Option Explicit

Sub Main
    Dim line, letters, r, i, total, position
    letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
    total = 0
    For r = 1 To 4000
        line = ""
        For i = 1 To 60
            line = line & Mid(letters, 1 + (r * 7 + i * i) Mod 26, 1)
        Next
        total = total + Len(line)
        For i = 1 To Len(line) - 1
            If Mid(line, i, 2) = "HO" Then total = total + 7
        Next
        position = InStr(1, line, "VC")
        Do While position > 0
            total = total + position
            position = InStr(position + 1, line, "VC")
        Loop
    Next
    WScript.Echo "checksum " & total
End Sub

Main
