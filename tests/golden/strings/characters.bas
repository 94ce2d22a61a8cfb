' Character codes: Asc, AscB, AscW, Chr, ChrB, ChrW.
Sub Main
    Debug.Print Asc("A"); Asc("abc"); Asc(""); AscB("A"); AscW(""); AscW(ChrW(8364))
    Debug.Print Chr(65); Chr$(97); Len(Chr(0)); LenB(ChrB(65)); AscB(ChrB(200))
    Debug.Print ChrW(8364) = ChrW(&H20AC); AscW(ChrW(-1))
    Debug.Print Chr(256)
    Debug.Print "not reached"
End Sub
