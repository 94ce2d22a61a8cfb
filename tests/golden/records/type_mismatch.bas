' A record takes only a record of its own type
Type Point
    X As Integer
End Type

Type Pair
    X As Integer
End Type

Sub Main
    Dim p As Point, q As Pair
    Dim v As Variant
    On Error Resume Next
    p = q
    Debug.Print Err.Number; Err.Description
    Err.Clear
    v = 5
    p = v
    Debug.Print Err.Number
    Err.Clear
    q.X = 8
    v = q
    q = v
    Debug.Print Err.Number; q.X
    Debug.Print "end"
End Sub
