' Case, trimming, repeating, reversing and StrConv.
Sub Main
    Debug.Print UCase("Hello"); LCase("Hello"); UCase(Null)
    Debug.Print "["; LTrim("  a  "); "]["; RTrim("  a  "); "]["; Trim("  a  "); "]"
    Debug.Print "[" & Trim(Chr(9) & " x " & Chr(9)) & "]"
    Debug.Print "["; Space(3); "]"; Len(Space(0))
    Debug.Print String(3, "xyz"); String(2, 66); String(2, "")
    Debug.Print StrReverse("abc"); StrReverse("")
    Debug.Print StrConv("hello", 1); StrConv("HELLO", 2); LenB(StrConv("abc", 128)); StrConv(StrConv("abc", 128), 64)
    Debug.Print Len("hello"); Len(""); Len(Null); LenB("ab")
    Debug.Print "done"
End Sub
