' Error gives the message of a number; the Error statement raises it.
Sub Main
    Debug.Print Error(10062); Error(10061); Error(11000); Error(5); "["; Error(0); "]["; Error; "]"
    Error 10080
    Debug.Print "not reached"
End Sub
