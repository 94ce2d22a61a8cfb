' An Object variable with arguments calls the object's default member: Nothing raises 10094 at run time.
Sub Main
    Dim o As Object, r
    Debug.Print "start"
    r = o("a")
    Debug.Print "never"
End Sub
