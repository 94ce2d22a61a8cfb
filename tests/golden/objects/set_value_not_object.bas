' A Set whose value is known not to be an object is refused when compiling; a Variant that holds no
' object is refused when the Set runs.
Sub Main
    Dim o As Object
    Dim v As Variant
    v = 12
    Debug.Print "setting"
    Set o = v
    Debug.Print "not reached"
End Sub
