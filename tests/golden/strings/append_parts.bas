' buf = buf & part & part ...: parts that are strings read in place or CStr of a whole number are joined
' and appended at once. Negative numbers, zero and Integers; a part that reads the target itself; parts
' longer than the joining room; a Variant target holding a number; a Null part; an overflow inside CStr,
' which appends nothing; Mid parts and a single constant.
Sub Main
    Dim buf As String, i As Long, small As Integer, big As Long, v As Variant, w As Variant, s As String
    For i = -3 To 3
        buf = buf & CStr(i * 7) & ","
    Next i
    Debug.Print buf
    small = -32768
    buf = "": buf = buf & CStr(small) & "|" & CStr(0) & "|" & CStr(2147483647)
    Debug.Print buf
    buf = "ab": buf = buf & buf & "."
    buf = buf & buf & "."
    Debug.Print buf
    s = String(300, "x")
    buf = "": buf = buf & s & "y"
    buf = buf & "z" & s
    Debug.Print Len(buf); Mid(buf, 299, 4); Right(buf, 2)
    v = 12: v = v & CStr(3) & "!"
    Debug.Print v; TypeName(v)
    w = Null: buf = "n": buf = buf & w & "-"
    Debug.Print buf
    On Error Resume Next
    big = 2147483647: buf = "keep"
    buf = buf & CStr(big + 1) & "?"
    Debug.Print buf; Err.Number
    On Error GoTo 0
    s = "abcdefgh": buf = ""
    For i = 1 To 4
        buf = buf & Mid(s, i * 2 - 1, 2) & "/"
    Next i
    buf = buf & "end"
    Debug.Print buf
End Sub
