'#Uses "lib/Node.cls"
' Object and Variant variables reach the members of class instances by name when the access runs:
' methods with optional and named arguments, properties, public variables, chains and Set.
Function MakeNode(ByVal label As String) As Object
    Dim made As New Node
    made.Label = label
    Set MakeNode = made
End Function

Sub Main
    Dim o As Object
    Dim v As Variant
    Set o = MakeNode("first")
    Set v = o
    Debug.Print o.Label; v.Describe(); v.Describe("with prefix ")
    v.Rename "second"
    Debug.Print o.Label
    o.Rename suffix:="!", newLabel:="third"
    Debug.Print v.Label
    v.Label = "fourth"
    Debug.Print o.Describe(prefix:="named ")
    Set o.Child = MakeNode("kid")
    Debug.Print v.Child.Label; v.Level(1).Describe()
    v.Bump
    v.Bump 4
    Debug.Print o.Count
    Dim n As Node
    Set n = v.Child
    Debug.Print n.Describe(); n Is o.Child; n Is o
    Set n = Nothing
    Set o = Nothing
    Debug.Print "o released"
    v = Empty
    Debug.Print "done"
End Sub
