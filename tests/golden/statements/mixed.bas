Function Twice(n As Integer) As Integer
    n = n + 1
    Twice = n * 2
End Function
Sub Show(ByVal a As Integer, Optional b As Variant)
    Debug.Print a; b
End Sub
Function Pick(s As String) As String
    Select Case s
        Case "a" To "f": Pick = "low"
        Case Else: Pick = "high"
    End Select
End Function
Sub Main
    Dim a As Integer
    a = 1
    Show Twice(a), Twice(a)
    Debug.Print a
    Show 5
    Debug.Print Pick("b"); Pick("x")
    Dim i As Integer
    For i = 1 To 3
    Next
    If a = 3 Then Debug.Print "three" Else Debug.Print "other": Debug.Print "more"
    Debug.Print i
End Sub
