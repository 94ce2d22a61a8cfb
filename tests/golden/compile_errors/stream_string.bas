' A stream number is a number, not a text.
Sub Main
    Close #"one"
End Sub
