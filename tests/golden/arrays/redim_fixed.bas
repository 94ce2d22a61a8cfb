' ReDim needs a dynamic array
Sub Main
    Dim a(3) As Integer
    ReDim a(5)
End Sub
