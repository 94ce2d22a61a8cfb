' A Def statement's letter list ends the line.
DefInt A-C X

Sub Main
    Debug.Print "never printed"
End Sub
