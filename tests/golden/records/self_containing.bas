' A type cannot contain itself
Type Node
    Value As Integer
    Link As Node
End Type

Sub Main
End Sub
