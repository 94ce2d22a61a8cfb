' A fixed array cannot take a whole array
Sub Main
    Dim a(3) As Integer, b() As Integer
    a = b
End Sub
