' Replace makes its result at its final length: longer and shorter replacements, a limited count, a
' start position, no match and an empty result; a result longer than memory can hold is the trappable
' error "Out of memory." (10001) and the target keeps its value.
Sub Main
    Debug.Print "["; Replace("a-b-c", "-", "<->"); "]["; Replace("a<->b<->c", "<->", "-"); "]"
    Debug.Print "["; Replace("xxxx", "x", "yz", 2, 2); "]["; Replace("abc", "q", "z"); "]["; Replace("aaa", "a", ""); "]"
    Debug.Print "["; Replace("abab", "ab", "ba", Count:=1); "]["; Replace("aaaa", "aa", "b"); "]"
    Dim s As String, big As String
    big = String$(50000, "a")
    s = "kept"
    On Error Resume Next
    s = Replace(big, "a", big)
    Debug.Print Err.Number; Err.Description; " "; s
    Err.Clear
    s = Replace(big, "a", big, 49999)
    Debug.Print Err.Number; Len(s)
    Err.Clear
    s = Replace(big, "a", big, Count:=3)
    Debug.Print Err.Number; Len(s)
End Sub
