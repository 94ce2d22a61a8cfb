' An array of records keeps its storage while a With block or a by-reference argument refers to one of
' its elements: re-dimensioning or replacing it meanwhile is refused as for a fixed array.
Type Point
    X As Long
    Name As String
End Type

Dim pts() As Point

Sub Grow(p As Point)
    On Error Resume Next
    ReDim pts(100)
    Debug.Print "ReDim in the callee:"; Err.Number; Err.Description
    Err.Clear
    ReDim Preserve pts(10)
    Debug.Print "Preserve in the callee:"; Err.Number
    p.X = 7
End Sub

Sub Main
    Dim other() As Point
    ReDim other(5)
    ReDim pts(3)
    pts(1).Name = "kept"
    On Error Resume Next
    With pts(1)
        ReDim pts(200)
        Debug.Print "ReDim in With:"; Err.Number; Err.Description
        Err.Clear
        pts = other
        Debug.Print "assignment in With:"; Err.Number
        Err.Clear
        .X = 5
    End With
    Grow pts(2)
    Err.Clear
    Debug.Print pts(1).Name; pts(1).X; pts(2).X; UBound(pts)
    ReDim Preserve pts(6)
    Debug.Print "after:"; Err.Number; UBound(pts); pts(1).X; pts(2).X
    pts = other
    Debug.Print "replaced:"; Err.Number; UBound(pts)
End Sub
