' Option Explicit takes the whole line; a comment may follow, other text may not.
Option Base 1 ' a comment is fine
Option Explicit Now

Sub Main
    Debug.Print "never printed"
End Sub
