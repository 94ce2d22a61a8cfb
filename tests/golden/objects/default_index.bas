'#Uses "lib/Row.cls"
' A default member with an index: obj(i) reads it and obj(i) = value assigns it, on an object declared
' as the class and on a Variant holding one.
Sub Main
    Dim r As New Row
    r(1) = "one"
    r(2) = r(1) & "+"
    Dim v As Variant
    Set v = r
    v(3) = "three"
    Debug.Print v(2); r(3); v.Joined()
    Debug.Print "done"
End Sub
