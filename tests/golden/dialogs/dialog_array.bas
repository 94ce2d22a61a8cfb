' A dialog variable cannot be an array.
Sub Main
    Begin Dialog UserDialog 200, 100
        OKButton 10, 10, 60, 20
    End Dialog
    Dim dialogs(2) As UserDialog
End Sub
