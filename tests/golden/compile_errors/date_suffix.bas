' A date literal is no number either: a suffix right after it is a type mismatch.
Sub Main
    Dim d As Variant
    d = #1/2/2000#!
    Debug.Print "never printed"
End Sub
