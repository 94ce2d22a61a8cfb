' Assigning a record copies it: every element, nested records, strings and arrays inside
Type Point
    X As Integer
    Y As Long
End Type

Type Shape
    Name As String
    Code As String * 4
    Corner As Point
    Tags(1 To 2) As String
    Extra As Variant
End Type

Sub Main
    Dim a As Shape, b As Shape
    a.Name = "square"
    a.Code = "ABCDEF"
    a.Corner.X = 3
    a.Corner.Y = 70000
    a.Tags(2) = "two"
    a.Extra = 1.5
    b = a
    b.Name = "copy"
    b.Corner.X = 4
    b.Tags(2) = "deux"
    b.Extra = "changed"
    Debug.Print a.Name; a.Code; a.Corner.X; a.Corner.Y; a.Tags(2); a.Extra
    Debug.Print b.Name; b.Code; b.Corner.X; b.Corner.Y; b.Tags(2); b.Extra
    a = a
    Debug.Print a.Name
    Debug.Print "end"
End Sub
