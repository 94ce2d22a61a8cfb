' Deep recursion: a Function that calls itself 2500 levels deep, 800 times over.
Function Depth(ByVal n As Long) As Long
    If n = 0 Then
        Depth = 0
    Else
        Depth = Depth(n - 1) + n Mod 3
    End If
End Function

Sub Main
    Dim r As Long, total As Long
    For r = 1 To 800
        total = total + Depth(2500 - r)
    Next r
    Debug.Print "checksum " & total
End Sub
