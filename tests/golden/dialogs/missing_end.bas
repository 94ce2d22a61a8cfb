' A Begin Dialog block without End Dialog.
Sub Main
    Begin Dialog UserDialog 200, 100
        OKButton 10, 10, 60, 20
End Sub
