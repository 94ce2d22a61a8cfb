' Run-time errors of user dialogs: Dialog before its block has run, and the Dlg functions with no
' dialog up. A definition with only a PushButton is accepted, and the fields start empty.
Sub Main
    On Error Resume Next
    Dim shown As Integer
    Dim dlg As UserDialog
    GoTo Show
Define:
    Begin Dialog UserDialog 200, 100
        TextBox 10, 10, 100, 12, .Name
        CheckBox 10, 30, 100, 12, "Check", .Flag
        PushButton 10, 60, 60, 20, "Go"
    End Dialog
    Debug.Print "[" & dlg.Name & "]"; dlg.Flag
    Exit Sub
Show:
    Dialog dlg
    Debug.Print Err.Number; " "; Err.Description
    Err.Clear
    shown = Dialog(dlg)
    Debug.Print Err.Number; shown
    Err.Clear
    Debug.Print DlgText("OK")
    Debug.Print Err.Number; " "; Err.Description
    Err.Clear
    DlgEnd 1
    Debug.Print Err.Number
    Err.Clear
    GoTo Define
End Sub
