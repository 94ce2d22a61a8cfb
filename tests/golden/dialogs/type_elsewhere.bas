' The dialog type exists only in the procedure that defines it.
Sub Other
    Begin Dialog UserDialog 200, 100
        OKButton 10, 10, 60, 20
    End Dialog
End Sub

Sub Main
    Dim dlg As UserDialog
End Sub
