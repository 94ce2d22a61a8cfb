Sub Main(a As Integer)
End Sub
