'#Uses "lib/Node.cls"
' Objects as arguments (by reference and by value of the reference), results of Functions, Is,
' arguments that a late-bound member changes, and the last reference running the terminator.
Sub Relabel(target As Node, ByVal text As String)
    target.Label = text
End Sub

Sub Replace(target As Node)
    Set target = New Node
    target.Label = "replacement"
End Sub

Sub Keep(ByVal target As Object)
    Set target = Nothing
End Sub

Function Pick(ByVal first As Node, ByVal second As Node, ByVal takeFirst As Boolean) As Node
    If takeFirst Then Set Pick = first Else Set Pick = second
End Function

Sub Main
    Dim a As New Node
    Dim b As Node
    a.Label = "a"
    Set b = New Node
    b.Label = "b"
    Relabel a, "a2"
    Debug.Print a.Label
    Debug.Print Pick(a, b, False).Label; Pick(a, b, True) Is a
    Keep b
    Debug.Print "kept"; b.Label
    Replace b
    Debug.Print b.Label
    Dim late As Object
    Set late = b
    Dim newName As String
    newName = "by late call"
    late.Rename newName
    Debug.Print b.Label; late Is b; Not (late Is Nothing)
    Set late = Nothing
    Set b = Nothing
    Debug.Print "done"
End Sub
