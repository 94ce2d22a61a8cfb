'#Uses "lib/Node.cls"
' Call with member procedures: on an object variable, through a chain, on Me inside the class (Bump),
' and on the With object.
Sub Main
    Dim n As New Node
    Set n.Child = New Node
    Call n.Rename("called", "!")
    Call n.Child.Rename("child")
    Call n.Bump(3)
    With n.Child
        Call .Bump
        Call .Rename(.Label, " in With")
    End With
    Debug.Print n.Label; n.Count; n.Child.Label; n.Child.Count
    Debug.Print "done"
End Sub
