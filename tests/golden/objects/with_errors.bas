'#Uses "lib/Node.cls"
' Errors inside With blocks: the With object survives a trapped error and Err statements; Resume to
' a label outside the block drops it.
Sub Main
    Dim n As New Node, zero As Integer
    n.Label = "kept"
    On Error Resume Next
    With n
        Err.Clear
        .Rename "after clear"
        Debug.Print 1 / zero
        Debug.Print "error"; Err.Number; .Label
    End With
    On Error GoTo Handler
    With New Node
        .Label = "temporary"
        Debug.Print .Describe()
        Debug.Print 1 / zero
        Debug.Print "not reached"
    End With
Done:
    Debug.Print "done"
    Exit Sub
Handler:
    Debug.Print "handler"; Err.Number
    Resume Done
End Sub
