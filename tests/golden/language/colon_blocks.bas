'#Uses "../objects/lib/Node.cls"
' Block statements share lines with other statements after ":": one-line loops, closers followed by
' more statements, a block If as the last statement of a line, Else with statements, and a With block
' on one line.
Sub Main
    Dim i As Integer, j As Integer, s As String
    For i = 1 To 3: Debug.Print i;: Next: Debug.Print
    For i = 1 To 0: Debug.Print "never": Next: Debug.Print "skipped"
    For i = 1 To 2: For j = 1 To 2: s = s & i & j & " ": Next j, i: Debug.Print s
    i = 0: Do While i < 3: i = i + 1: Loop: Debug.Print "do"; i
    i = 0: Do: i = i + 2: Loop Until i >= 6: Debug.Print "until"; i
    i = 0: While i < 4: i = i + 1: Wend: Debug.Print "wend"; i
    For i = 1 To 5
        If i = 2 Then: Debug.Print "two"
        If i Mod 2 = 0 Then
            Debug.Print "even"; i
        Else: Debug.Print "odd"; i
        End If: If i = 4 Then Exit For
    Next i: Debug.Print "after"; i
    i = 10: If i > 5 Then
        Debug.Print "big"
    End If
Again: i = i - 1: If i > 7 Then GoTo Again
    Debug.Print "again"; i
    For i = 1 To 3: If i = 2 Then Exit For
    Next: Debug.Print "exit"; i
    Dim n As New Node
    With n: .Label = "one line": Debug.Print .Describe(): End With: Debug.Print "after With"
    For i = 1 To 2: With n: .Bump i: End With: Next: Debug.Print n.Count
    Debug.Print "end"
End Sub
