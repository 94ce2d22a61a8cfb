'#Uses "lib/Node.cls"
' Member chains on early-bound objects: properties that return objects, Property Set, functions
' with optional arguments, public variables of the class and Me.
Sub Main
    Dim root As Node
    Set root = New Node
    root.Label = "root"
    Set root.Child = New Node
    root.Child.Label = "child"
    Set root.Child.Child = New Node
    root.Child.Child.Rename "grand", "child"
    Debug.Print root.Child.Child.Label
    Debug.Print root.Level(2).Describe()
    Debug.Print root.Level(1).Describe("level one is ")
    Debug.Print root.Self.Self.Child.Label
    root.Child.Bump
    root.Child.Bump 5
    Debug.Print root.Child.Count
    Debug.Print root.Child Is root.Level(1); root Is root.Child
    Set root.Child = Nothing
    Debug.Print "child released"
    Debug.Print root.Child Is Nothing
    Set root = Nothing
    Debug.Print "done"
End Sub
