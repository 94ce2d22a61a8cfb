'#Uses "lib/Node.cls"
' An error handler with a With block of its own, entered from inside another With block: its
' references reach its own object, and after Resume Next the interrupted block's references reach
' that block's object again.
Sub Main
    Dim outer As New Node, second As New Node, zero As Integer
    outer.Label = "outer"
    second.Label = "second"
    On Error GoTo Handler
    With outer
        Debug.Print .Label
        Debug.Print 1 / zero
        Debug.Print "back in"; .Label
    End With
    Debug.Print "done"
    Exit Sub
Handler:
    With second
        Debug.Print "handler sees"; .Label
    End With
    Resume Next
End Sub
