' Select Case and GoTo
Function Kind(ByVal n As Integer) As String
    Select Case n
        Case Is < 0
            Kind = "negative"
        Case 0
            Kind = "zero"
        Case 1 To 9, 11
            Kind = "small"
        Case Else
            Kind = "large"
    End Select
End Function

Sub Main
    Dim n As Integer
    n = -1
Again:
    Debug.Print n; Kind(n)
    n = n + 5
    If n < 15 Then GoTo Again
End Sub
