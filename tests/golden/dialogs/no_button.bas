' A dialog needs an OKButton, a CancelButton or a PushButton.
Sub Main
    Begin Dialog UserDialog 200, 100
        Text 10, 10, 100, 12, "Only text"
    End Dialog
End Sub
