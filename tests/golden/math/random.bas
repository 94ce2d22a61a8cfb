' Rnd steps the generator, repeats with 0 and reseeds with a negative number; Randomize sets the seed.
Sub Main
    Dim a As Single, b As Single
    Debug.Print Rnd(-1); Rnd; Rnd; Rnd(0)
    Randomize 1
    a = Rnd
    Debug.Print a; Rnd(-1) = a
    Randomize
    b = Rnd
    Debug.Print b >= 0 And b < 1
    Debug.Print "done"
End Sub
