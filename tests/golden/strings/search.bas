' InStr, InStrB, InStrRev, Replace and StrComp.
Sub Main
    Debug.Print "InStr: "; InStr("aXa", "X"); InStr("aXa", "x"); InStr("abc", ""); InStr("", ""); InStr(4, "abc", "c"); InStr(2, "abcabc", "abc")
    Debug.Print "InStr start past the end: "; InStr(10, "abc", "a"); " empty pattern at 3: "; InStr(3, "abc", "")
    Debug.Print "InStr Null: "; InStr("abc", Null)
    Debug.Print "InStrB: "; InStrB("abc", "b")
    Debug.Print "InStrRev: "; InStrRev("abcabc", "bc"); InStrRev("abc", ""); InStrRev("abcabc", "bc", 4); InStrRev("abcabc", "bc", 2); InStrRev("", "a")
    Debug.Print "Replace: "; Replace("aaaa", "a", "b", 2, 2); " "; Replace("abc", "", "x"); " "; Replace("a-b-c", "-", "+"); " "; Replace("abc", "b", "x", 4)
    Debug.Print "Replace count 1: "; Replace("a.b.c", ".", "", Count:=1)
    Debug.Print "StrComp: "; StrComp("a", "A"); StrComp("a", "A", 1); StrComp("a", "b"); StrComp("b", "a"); StrComp("x", Null)
    Debug.Print "done"
End Sub
