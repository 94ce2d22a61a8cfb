'#Uses "lib/Node.cls"
' A member that the instance does not have is found missing when the access runs.
Sub Main
    Dim o As Object
    Set o = New Node
    o.Label = "kept"
    Debug.Print o.Label
    o.Fly 3
    Debug.Print "not reached"
End Sub
