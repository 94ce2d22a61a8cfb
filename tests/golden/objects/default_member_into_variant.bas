'#Uses "lib/Node.cls"
'#Uses "lib/Counter.cls"
' Let into a Variant stores the value of an object's default member; Set stores the object itself
Sub Main
    Dim n As New Node
    n.Label = "first"
    Dim v, i
    For i = 1 To 2
        v = n
        Debug.Print TypeName(v); v
    Next
    Dim o As Object
    Set o = n
    Dim held As Variant
    Set held = o
    Debug.Print TypeName(held)
    Dim copy
    copy = held
    Debug.Print TypeName(copy); copy
    Dim list(1)
    list(0) = n
    Set list(1) = n
    Debug.Print TypeName(list(0)); TypeName(list(1))
    ' An object without a default member has no value to give.
    Dim plain As New Counter
    On Error Resume Next
    v = plain
    Debug.Print Err.Number; TypeName(v)
End Sub
