' Two items cannot share a field name.
Sub Main
    Begin Dialog UserDialog 200, 100
        TextBox 10, 10, 100, 12, .Name
        CheckBox 10, 30, 100, 12, "Check", .Name
        OKButton 10, 60, 60, 20
    End Dialog
End Sub
