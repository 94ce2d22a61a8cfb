' A single-line If takes declarations in its Then and Else parts as any ":" list does: the name is
' declared for the whole procedure, the statements beside it run only on their branch.
Sub Main
    Dim k As Integer
    For k = 1 To 3
        If k = 1 Then Dim q As Integer: q = 5 Else Const c = 7: q = q + c
        If k > 1 Then Static total As Long: total = total + k
        Debug.Print k; q; total
    Next
    Select Case k
    Case 4: Dim w As String: w = "four"
    End Select
    Debug.Print w
End Sub
