' Split, Join and Filter with delimiters, limits and text compares.
Sub Main
    Dim parts
    parts = Split("a,b,,c", ",")
    Debug.Print LBound(parts); UBound(parts); TypeName(parts); "["; Join(parts, "|"); "]"
    Debug.Print Join(Split("one two three")); " / "; UBound(Split(""))
    Debug.Print Join(Split("a,b,c", ",", 2), "|"); " / "; Join(Split("aXbxc", "x", -1, 1), "|"); " / "; Join(Split("aXbxc", "x"), "|")
    Debug.Print Join(Array(1, "b", True), "+"); " / "; Join(Array(), "+"); "."
    Debug.Print Join(Filter(Split("apple banana cherry"), "an"), ","); " / "; Join(Filter(Split("apple banana cherry"), "an", False), ",")
    Debug.Print Join(Filter(Split("Apple apricot Banana"), "AP", True, 1), ",")
    Debug.Print "done"
End Sub
