'#Uses "lib/Counter.cls"
' An untrapped error ends the run; the instances that the stopped procedures held still terminate as
' their frames are unwound.
Sub Inner
    Dim c As New Counter, zero As Integer
    c.Name = "local"
    c.Add 1
    Debug.Print 1 / zero
End Sub
Sub Main
    Inner
End Sub
