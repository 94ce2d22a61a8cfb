' The same literal in a Const.
Const Huge = 1E309
Sub Main
End Sub
