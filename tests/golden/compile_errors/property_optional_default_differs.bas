' A Property Let's Optional parameters must repeat the defaults of its Get.
Property Get Cell(Optional i As Integer = 1) As Integer
End Property

Property Let Cell(Optional i As Integer = 2, value As Integer)
End Property

Sub Main
End Sub
