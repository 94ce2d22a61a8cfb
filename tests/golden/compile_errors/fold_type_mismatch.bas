' Constants that an operator cannot take together are a type mismatch when compiling.
Sub Main
    Debug.Print "never printed"
    Debug.Print "abc" * 2
End Sub
