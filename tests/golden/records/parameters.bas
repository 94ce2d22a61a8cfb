' Records as module-level variables, by-reference parameters (also elements of records and arrays) and
' Function results
Type Point
    X As Integer
    Y As Integer
End Type

Type Shape
    Corner As Point
End Type

Dim shared As Point

Sub Move(p As Point, dx As Integer)
    p.X = p.X + dx
End Sub

Sub Replace(p As Point)
    Dim fresh As Point
    fresh.Y = 42
    p = fresh
End Sub

Function Make(x As Integer, y As Integer) As Point
    Make.X = x
    Make.Y = y
End Function

Sub Bump()
    shared.X = shared.X + 1
End Sub

Sub Main
    Dim a As Point
    Move a, 5
    Move a, 2
    Debug.Print a.X
    Replace a
    Debug.Print a.X; a.Y
    a = Make(3, 4)
    Debug.Print a.X; a.Y
    Bump
    Bump
    Debug.Print shared.X
    Move shared, 10
    Debug.Print shared.X
    Dim pts(1) As Point
    Move pts(1), 9
    Debug.Print pts(1).X
    Dim s As Shape
    Move s.Corner, 4
    With s
        Call Move(.Corner, 1)
    End With
    Debug.Print s.Corner.X
    Debug.Print "end"
End Sub
