' Exit For outside any For loop: only the procedure's own kind word may follow Exit.
Sub Main
    Do
        Exit Do
    Loop
    Exit For
End Sub
