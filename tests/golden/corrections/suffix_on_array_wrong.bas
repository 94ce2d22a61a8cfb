' Another type's suffix on an array's name is refused
Sub Main
    Dim words$(2)
    words%(0) = 1
End Sub
