Const Limit = 10 +

Sub Main
End Sub
