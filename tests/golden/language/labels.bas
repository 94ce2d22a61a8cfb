' Labels: a name followed by ":" at the start of a line, also one spelled like a recognised name
' (Line, Text); a blank may stand before the colon; a statement may follow the label on its line;
' GoTo jumps forward and back.
Sub Main
    Dim n As Integer
    GoTo Line
    Debug.Print "skipped"
Line:
    Debug.Print "at Line"
Again : n = n + 1
    If n < 3 Then GoTo Again
    Debug.Print "n"; n
    GoTo Text
    Debug.Print "skipped too"
Text: Debug.Print "at Text"
    Debug.Print "end"
End Sub
