' "&" right after a string literal is the concatenation operator, not a type suffix, with or without
' blanks around it, in statements and in constant expressions
Const Joined = "a"&"b"

Sub Main
    Dim x As Variant
    x = 1
    Debug.Print "a"&x; "a"& x; "a" &x; "a" & x
    Debug.Print "a"&"b"&"c"; Joined; TypeName("a"&x)
    Debug.Print #1/2/2000#&"x"
    Debug.Print "end"
End Sub
