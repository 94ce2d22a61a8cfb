' Constants that name each other are never known: the first one reports the name it cannot read.
Const A = B + 1
Const B = A + 1

Sub Main
End Sub
