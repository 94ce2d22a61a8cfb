'#Uses "lib/GridCell.cls"
'#Uses "lib/Orphan.cls"
' A class module's As New variable must name a class that module reaches itself: the macro's own
' '#Uses of the class does not make it reachable from there.
Sub Main
    Dim o As New Orphan
    Debug.Print o.Held
End Sub
