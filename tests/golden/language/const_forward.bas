' A module-level constant may name constants declared further down: it is read again once they are known
' (also the constants after it on its line).
Const A = B * 2, E = A + 1
Public Const C As Long = D + B
Const B = 3
Const D = 10

Sub Main
    Debug.Print A; B; C; D; E; TypeName(C)
End Sub
