' A parameter name given twice is refused at its second occurrence.
Sub Twice(ByVal count As Integer, ByVal count As Long)
End Sub
Sub Main
End Sub
