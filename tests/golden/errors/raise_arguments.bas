' Err.Raise takes each of its arguments once
Sub Main
    Err.Raise Number:=1, Number:=2
End Sub
