' An Enum member line holds one member and its value; further text is refused.
Enum Colors ' a comment is fine
    Red = 1 ' so is this
    Green = 2 3
End Enum

Sub Main
    Debug.Print "never printed"
End Sub
