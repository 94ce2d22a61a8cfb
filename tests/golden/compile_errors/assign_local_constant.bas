' Assigning to a local constant is refused at the constant's name.
Sub Main
    Const Size = 2
    Debug.Print Size
    Size = 3
End Sub
