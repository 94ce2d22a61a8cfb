' A fixed module-level array too large to make: the start fails, naming the error and its declaration.
Dim huge(400000000) As Double

Sub Main
    Debug.Print "never"
End Sub
