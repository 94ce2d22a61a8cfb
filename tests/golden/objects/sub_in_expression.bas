'#Uses "lib/Node.cls"
' A member Sub used where a value is needed is refused when compiling, at the member's name.
Sub Main
    Dim n As New Node
    Debug.Print n.Rename("x")
End Sub
