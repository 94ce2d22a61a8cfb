' Many small procedure calls with by-reference arguments.
Sub Bump(ByRef x As Long, ByVal d As Long)
    x = x + d
    If x >= 1000000 Then x = x - 1000000
End Sub

Sub Swap(ByRef a As Long, ByRef b As Long)
    Dim t As Long
    t = a
    a = b
    b = t
End Sub

Sub Main
    Dim i As Long, a As Long, b As Long
    a = 1
    b = 2
    For i = 1 To 1000000
        Bump a, i
        Swap a, b
    Next i
    Debug.Print "checksum " & (a * 3 + b)
End Sub
