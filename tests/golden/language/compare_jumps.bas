' Conditions that are one comparison of whole numbers, against a constant and against a variable, in
' every statement that jumps on a condition (If, ElseIf, Do While, Do Until, Loop While, Loop Until,
' While), at and around the boundary, with Integer and Long operands.
Sub Main
    Dim i As Long, k As Integer, limit As Long, hits As Long, text As String
    limit = 3
    For i = 1 To 5
        text = ""
        If i = 3 Then text = text & "=" Else text = text & "."
        If i <> limit Then text = text & "#" Else text = text & "."
        If i < 3 Then
            text = text & "<"
        ElseIf i <= limit Then
            text = text & "l"
        ElseIf i > 4 Then
            text = text & ">"
        ElseIf limit >= i - 1 Then
            text = text & "g"
        Else
            text = text & "?"
        End If
        If 3 < i Then text = text & "r"
        If limit > i Then text = text & "v"
        Debug.Print i; text
    Next i
    k = 0
    Do While k < 4
        k = k + 1
    Loop
    hits = k
    Do Until k <= -2
        k = k - 3
    Loop
    hits = hits * 100 + k
    Do
        k = k + 2
    Loop While k <> 6
    hits = hits * 100 + k
    Do
        k = k - 1
    Loop Until k = limit
    hits = hits * 100 + k
    i = 0
    While i >= 0 And i < 7
        i = i + 2
    Wend
    Debug.Print hits; i
End Sub
