' IIf and Choose evaluate only the argument they return, also when it calls a function.
Function Note(text)
    Debug.Print "ran "; text
    Note = text
End Function

Sub Main
    Dim zero As Integer
    Debug.Print IIf(True, 1, 1 / zero); IIf(False, 1 / zero, "b"); IIf(Null, 1, 2)
    Debug.Print IIf(1 > 2, Note("yes"), Note("no"))
    Debug.Print Choose(2, Note("one"), Note("two"), Note("three"))
    Debug.Print Choose(4, "a", "b"); Choose(0, "a"); Choose(1.6, "a", "b")
    Debug.Print Len(IIf(Note("x") = "x", "four", Note("never")))
    Debug.Print "done"
End Sub
