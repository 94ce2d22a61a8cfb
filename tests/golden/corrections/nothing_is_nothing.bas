' Is between constants is not folded: Nothing Is Nothing is True.
Sub Main
    Dim o As Object
    Debug.Print (Nothing Is Nothing); Nothing Is Nothing
    Debug.Print o Is Nothing; Nothing Is o; Not (o Is Nothing)
End Sub
