' A name may be followed by several argument lists: each indexes the array the one before gave
Function Pair()
    Pair = Array(Array(1, 2), 3)
End Function
Sub Main
    Dim v
    v = Array(Array(1, 2), 3)
    Debug.Print v(0)(1); v(1)
    Debug.Print Pair()(0)(0); Array(Array(Array(7)))(0)(0)(0)
    Dim w(1)
    w(1) = Array("a", Array("b", "c"))
    Debug.Print w(1)(1)(0) & w(1)(0)
    Debug.Print UBound(v(0))
End Sub
