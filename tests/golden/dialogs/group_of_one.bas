' An OptionGroup needs at least two OptionButtons.
Sub Main
    Begin Dialog UserDialog 200, 100
        OptionGroup .Choice
        OptionButton 10, 10, 60, 12, "One"
        OKButton 10, 40, 60, 20
    End Dialog
End Sub
