' ReDim cannot change the element type of a declared array
Sub Main
    Dim d() As Integer
    ReDim d(2) As String
End Sub
