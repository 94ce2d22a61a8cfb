' Command gives the text the run was started with.
Sub Main
    Debug.Print "["; Command; "]"; Len(Command$)
    Debug.Print "done"
End Sub
