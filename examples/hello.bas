Sub Main
    Debug.Print "Hello, world!"
End Sub
