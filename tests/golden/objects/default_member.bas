'#Uses "lib/Node.cls"
' The default member (Attribute VB_UserMemId = 0): read when the object is used as a value that is
' not an object, assigned when a value is assigned to an object variable without Set.
Sub Main
    Dim n As New Node
    n.Label = "first"
    Dim text As String
    text = n
    Debug.Print text
    n = "second"
    Debug.Print n.Label
    Debug.Print "value: " & n
    Dim o As Object
    Set o = n
    text = o
    Debug.Print text
    Debug.Print "done"
End Sub
