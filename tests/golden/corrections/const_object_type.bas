' A Const inside a procedure needs a type that constants can hold.
Sub Main
    Const C As Object = 1
End Sub
