' DlgListBoxArray without an array tells how many entries a list has (after a replacement, the new
' count); an item without a list and the instruction form without an array are "Invalid function
' argument value.". The dialog function works on the dialog before it is shown and then ends it.
Dim shorter(1) As String

Function Lists(item$, action%, value%) As Boolean
    If action% <> 1 Then Exit Function
    Debug.Print DlgListBoxArray("Fruit"); DlgListBoxArray("Size"); DlgListBoxArray("Colour")
    Debug.Print DlgListBoxArray("Fruit", shorter); DlgListBoxArray("Fruit")
    On Error Resume Next
    Debug.Print DlgListBoxArray("Name")
    Debug.Print Err.Number; " "; Err.Description
    Err.Clear
    DlgListBoxArray "Fruit"
    Debug.Print Err.Number
    DlgEnd 3
End Function

Sub Main
    Dim fruits$(2), sizes$(3), colours$(0)
    fruits(0) = "Apple": fruits(1) = "Banana": fruits(2) = "Cherry"
    shorter(0) = "Plum": shorter(1) = "Pear"
    Begin Dialog UserDialog 200, 150, .Lists
        TextBox 10, 4, 100, 12, .Name
        ListBox 10, 20, 100, 40, fruits(), .Fruit
        ComboBox 10, 64, 100, 40, sizes(), .Size
        DropListBox 120, 20, 70, 60, colours(), .Colour
        OKButton 120, 120, 60, 20
    End Dialog
    Dim dlg As UserDialog
    Debug.Print Dialog(dlg)
End Sub
