' TypeOf needs an object type after Is
Sub Main
    Dim o As Object
    Debug.Print TypeOf o Is Integer
End Sub
