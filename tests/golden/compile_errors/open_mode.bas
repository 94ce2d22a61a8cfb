' Open names one of the five modes.
Sub Main
    Open "a.txt" For Update As #1
End Sub
