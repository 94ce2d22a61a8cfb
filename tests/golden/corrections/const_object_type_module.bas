' A Const of the module too.
Const C As Object = 1
Sub Main
End Sub
