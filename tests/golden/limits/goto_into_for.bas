' A GoTo into the body of a For that never ran: its Next leaves the loop.
Sub Main
    Dim i, n As Long
    GoTo L
    For i = 1 To 2
L:
        Debug.Print "in"; i
    Next
    Debug.Print "after"
    GoTo M
    For n = 1 To 3
M:
        Debug.Print "in"; n
    Next n
    ' The same loop entered through its For runs as usual.
    For n = 1 To 3
        Debug.Print "pass"; n
    Next n
End Sub
