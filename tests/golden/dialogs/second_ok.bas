' Only one OKButton is allowed.
Sub Main
    Begin Dialog UserDialog 200, 100
        OKButton 10, 10, 60, 20
        OKButton 10, 40, 60, 20, .Again
    End Dialog
End Sub
