' Print # needs its stream number after a '#'.
Sub Main
    Print 1, "x"
End Sub
