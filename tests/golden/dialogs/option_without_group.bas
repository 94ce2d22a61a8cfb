' An OptionButton needs its OptionGroup before it.
Sub Main
    Begin Dialog UserDialog 200, 100
        OptionButton 10, 10, 60, 12, "Lonely"
        OKButton 10, 40, 60, 20
    End Dialog
End Sub
