' A Variant that holds a record gives its fields by name (reading them; assigning raises 10902).
Type Point
    X As Long
    Name As String
End Type
Sub Main
    Dim p As Point, v As Variant, all(1) As Point, item
    p.X = 4: p.Name = "four"
    v = p
    Debug.Print v.X; v.Name
    all(0).X = 10: all(1).X = 11
    For Each item In all
        Debug.Print item.X;
    Next
    Debug.Print
    On Error Resume Next
    Debug.Print v.Missing
    Debug.Print Err.Number; Err.Description
    Err.Clear
    v.X = 5
    Debug.Print Err.Number; v.X
End Sub
