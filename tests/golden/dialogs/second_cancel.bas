' Only one CancelButton is allowed.
Sub Main
    Begin Dialog UserDialog 200, 100
        CancelButton 10, 10, 60, 20
        CancelButton 10, 40, 60, 20, .Again
    End Dialog
End Sub
