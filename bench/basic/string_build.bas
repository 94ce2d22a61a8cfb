' String building: a list of numbers built with & and CStr in a loop, then read back with Mid, InStr
' and Right and short pieces compared.
Sub Main
    Dim buf As String, piece As String
    Dim r As Long, i As Long, total As Long, position As Long
    For r = 1 To 300
        buf = ""
        For i = 1 To 400
            buf = buf & CStr((i * r) Mod 97) & ","
        Next i
        total = total + Len(buf)
        piece = Right(buf, 3)
        If piece = "11," Then total = total + 100
        position = InStr(buf, ",42,")
        total = total + position
        For i = 1 To Len(buf) - 1 Step 3
            If Mid(buf, i, 2) = "7," Then total = total + 1
        Next i
    Next r
    Debug.Print "checksum " & total
End Sub
