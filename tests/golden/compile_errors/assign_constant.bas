' Assigning to a constant is refused at the constant's name.
Const Limit = 10
Sub Main
    Limit = 11
End Sub
