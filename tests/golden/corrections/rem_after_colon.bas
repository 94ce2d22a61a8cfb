' Rem after ":" is a comment to the end of the line.
Sub Main
    Dim x
    x = 1: Rem note "with an unbalanced quote
    Debug.Print x: Rem more
    If x = 1 Then Debug.Print "one": Rem in a single-line If
    x = 2: Rem
    Debug.Print x
End Sub
