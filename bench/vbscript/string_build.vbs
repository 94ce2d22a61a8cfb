' String building: a list of numbers built with & and CStr in a loop, then read back with Mid, InStr
' and Right and short pieces compared.
Option Explicit

Sub Main
    Dim buf, piece, r, i, total, position
    total = 0
    For r = 1 To 300
        buf = ""
        For i = 1 To 400
            buf = buf & CStr((i * r) Mod 97) & ","
        Next
        total = total + Len(buf)
        piece = Right(buf, 3)
        If piece = "11," Then total = total + 100
        position = InStr(buf, ",42,")
        total = total + position
        For i = 1 To Len(buf) - 1 Step 3
            If Mid(buf, i, 2) = "7," Then total = total + 1
        Next
    Next
    WScript.Echo "checksum " & total
End Sub

Main
