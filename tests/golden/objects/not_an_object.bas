' Selecting a member of a value that is not an object is refused when compiling.
Sub Main
    Dim count As Integer
    count = 3
    Debug.Print count.Value
End Sub
