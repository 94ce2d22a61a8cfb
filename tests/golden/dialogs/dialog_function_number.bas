' The Dialog function needs a dialog variable, not a value.
Sub Main
    Begin Dialog UserDialog 200, 100
        OKButton 10, 10, 60, 20
    End Dialog
    Dim dlg As UserDialog
    Debug.Print Dialog(5)
End Sub
