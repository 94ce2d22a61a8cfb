' A built-in that fails inside an expression ends the expression: nothing after it runs on a value
' stack that lacks its result, so the With block's record below the statement stays in place.
Type Point
    x As Long
    y As Long
End Type

Sub Main
    Dim p As Point, b As Boolean, s As String
    On Error Resume Next
    p.x = 5
    p.y = 7
    s = "ab"
    With p
        b = Mid(s, 1, -1) = ""
        Debug.Print Err.Number; b
        Err.Clear
        b = Mid(s, 0, 1) < "b" And .y > 0
        Debug.Print Err.Number; b
        Err.Clear
        Debug.Print .x; .y
    End With
    Debug.Print "end"
End Sub
