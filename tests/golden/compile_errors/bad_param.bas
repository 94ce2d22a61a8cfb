Sub Main
End Sub

Function Twice(ByVal As Integer) As Integer
End Function
