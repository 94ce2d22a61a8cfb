' Currency constants near the ends of the range, at module level and inside a procedure, keep every digit.
Const Largest As Currency = 922337203685477
Const Smallest As Currency = -922337203685477
Const NearTop As Currency = 922337203685477.5
Const Quarter As Currency = 0.25

Sub Main
    Const Local As Currency = 123456789.5
    Debug.Print Largest; " "; TypeName(Largest)
    Debug.Print Smallest
    Debug.Print NearTop
    Debug.Print Quarter * 4
    Debug.Print Local; " "; TypeName(Local)
End Sub
