' A member reference that starts with "." needs an enclosing With block.
Sub Main
    Debug.Print "start"
    .Name = 3
End Sub
