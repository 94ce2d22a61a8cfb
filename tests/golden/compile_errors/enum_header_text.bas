' Only a comment may follow the name in an Enum header.
Enum Sizes Large
    Small
End Enum

Sub Main
    Debug.Print "never printed"
End Sub
