Dim total As Long

Sub Add(n As Long)
    total = total + n
End Sub

Sub Main
    Add 5
    Add 7
    Debug.Print total
End Sub
