' Like works in module-level Const expressions as it does when it runs; a comment may end the line.
Const StartsWithA = "abc" Like "a*", OutsideRange = "b" Like "[!a-c]" ' both Booleans
Const CaseCounts = "ABC" Like "a*"

Sub Main
    Debug.Print StartsWithA; OutsideRange; CaseCounts; TypeName(StartsWithA)
    Debug.Print "end"
End Sub
