' A type suffix on an array's name names its element type: the array is reached with or without it
Dim shared$(1)

Sub Fill(list$())
    list$(1) = "filled"
End Sub

Sub Main
    Dim words$(2)
    words$(0) = "a"
    words(1) = "b"
    Debug.Print words$(0); words(1); UBound(words$)
    Dim counts%(1 To 3)
    counts%(2) = 7
    Debug.Print counts(2) + counts%(2); LBound(counts%)
    shared$(0) = "module"
    Fill shared$
    Debug.Print shared(0); shared$(1)
End Sub
