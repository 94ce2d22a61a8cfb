' Only the value parameter of a Property Let may follow its Optional parameters: a further required
' parameter is refused where the first required one is written.
Property Let Cell(Optional i As Integer = 1, value As Integer, extra As Integer)
End Property

Sub Main
End Sub
