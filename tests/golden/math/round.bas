' Round takes ties to the even neighbour and keeps the argument's kind.
Sub Main
    Debug.Print Round(2.5); Round(3.5); Round(-2.5); Round(0.125, 2); Round(1.2345, 3); Round(7)
    Debug.Print Round(CCur(2.345), 2); Round(CSng(1.5)); Round(CDec(2.5)); Round(Null); Round(Empty)
    Debug.Print Round(2.5, -1)
    Debug.Print "not reached"
End Sub
