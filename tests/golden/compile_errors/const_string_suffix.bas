' In a constant expression too, a suffix right after a string literal is a type mismatch.
Const Greeting = "Hello"$

Sub Main
    Debug.Print "never printed"
End Sub
