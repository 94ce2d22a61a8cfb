' String building and searching: lines built by concatenation, scanned with Len, Mid and InStr.
Sub Main
    Dim line As String, letters As String
    Dim r As Long, i As Long, total As Long, position As Long
    letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
    total = 0
    For r = 1 To 4000
        line = ""
        For i = 1 To 60
            line = line & Mid(letters, 1 + (r * 7 + i * i) Mod 26, 1)
        Next i
        total = total + Len(line)
        For i = 1 To Len(line) - 1
            If Mid(line, i, 2) = "HO" Then total = total + 7
        Next i
        position = InStr(1, line, "VC")
        Do While position > 0
            total = total + position
            position = InStr(position + 1, line, "VC")
        Loop
    Next r
    Debug.Print "checksum " & total
End Sub
