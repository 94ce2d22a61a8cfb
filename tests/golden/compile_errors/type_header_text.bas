' Only a comment may follow the name in a Type header.
Type Point ' a comment is fine
    X As Integer
End Type

Type Size Extra
    Width As Integer
End Type

Sub Main
    Debug.Print "never printed"
End Sub
