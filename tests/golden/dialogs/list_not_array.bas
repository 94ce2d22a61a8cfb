' The list of a ListBox is a String array variable with one index.
Sub Main
    Dim names$(1, 2)
    Begin Dialog UserDialog 200, 100
        ListBox 10, 10, 100, 60, names(), .Pick
        OKButton 10, 80, 60, 20
    End Dialog
End Sub
