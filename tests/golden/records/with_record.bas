' With on a record works on the record itself, also on an element of an array of records
Type Point
    X As Integer
    Y As Integer
End Type

Type Shape
    Name As String
    Corner As Point
End Type

Sub Main
    Dim s As Shape
    With s
        .Name = "box"
        .Corner.X = 3
        With .Corner
            .Y = 9
            Debug.Print .X; .Y
        End With
        Debug.Print .Name
    End With
    Debug.Print s.Name; s.Corner.X; s.Corner.Y
    Dim all(2) As Shape
    Dim i As Integer
    For i = 0 To 2
        With all(i)
            .Name = "n" & i
            .Corner.X = i * 10
        End With
    Next
    Debug.Print all(1).Name; all(2).Corner.X
    Debug.Print "end"
End Sub
