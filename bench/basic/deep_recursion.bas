' Deep recursion: a Function that calls itself 5000 levels deep, 400 times over.
Function Depth(ByVal n As Long) As Long
    If n = 0 Then
        Depth = 0
    Else
        Depth = Depth(n - 1) + n Mod 3
    End If
End Function

Sub Main
    Dim r As Long, total As Long
    For r = 1 To 400
        total = total + Depth(5000 - r)
    Next r
    Debug.Print "checksum " & total
End Sub
