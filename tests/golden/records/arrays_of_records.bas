' Arrays of records: elements and their elements, ReDim Preserve, whole-array copies, For Each
Type Point
    X As Integer
    Y As Integer
End Type

Type Inner
    Y As Long
End Type

Type Outer
    Label As String
    Core As Inner
    Pts(1 To 2) As Point
End Type

Sub Main
    Dim pts(1 To 3) As Point
    Dim i As Integer
    For i = 1 To 3
        pts(i).X = i
        pts(i).Y = i * i
    Next
    Debug.Print pts(2).X; pts(3).Y
    Dim o() As Outer
    ReDim o(0 To 1)
    o(1).Label = "one"
    o(1).Core.Y = 11
    o(1).Pts(2).X = 12
    ReDim Preserve o(0 To 2)
    o(2) = o(1)
    o(2).Pts(2).X = 22
    Debug.Print o(1).Label; o(1).Core.Y; o(1).Pts(2).X; o(2).Label; o(2).Pts(2).X; UBound(o)
    Dim copyOf() As Outer
    copyOf = o
    copyOf(1).Core.Y = -1
    Debug.Print o(1).Core.Y; copyOf(1).Core.Y
    Dim total As Integer
    Dim p As Variant
    For Each p In pts
        total = total + 1
    Next
    Debug.Print total
    Dim single1 As Point
    single1 = pts(3)
    Debug.Print single1.X; single1.Y
    Debug.Print "end"
End Sub
