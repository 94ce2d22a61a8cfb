' Main's own fixed array too large to make: Main cannot begin; the error is reported at its header.
Sub Main
    Dim huge(400000000) As Double
    Debug.Print "never"
End Sub
