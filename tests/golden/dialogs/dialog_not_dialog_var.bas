' Dialog shows a dialog variable only: a variable of another type is refused at its name.
Sub Main
    Begin Dialog UserDialog 200, 100
        OKButton 10, 10, 60, 20
    End Dialog
    Dim count As Integer
    Dialog count
End Sub
