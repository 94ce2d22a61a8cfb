'#Uses "lib/Node.cls"
' A GoTo into a With block from outside it stops the run.
Sub Main
    Dim n As New Node
    GoTo Inside
    With n
Inside:
        Debug.Print .Label
    End With
End Sub
