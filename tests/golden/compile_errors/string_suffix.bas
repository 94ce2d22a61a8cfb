' A type suffix written right after a string literal is a type mismatch, reported at the suffix.
Sub Main
    Dim x As Variant
    Debug.Print "never printed"
    x = "a"%
End Sub
