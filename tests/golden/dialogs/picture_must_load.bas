' A Picture whose Type adds 16 must load: a missing file is "Invalid function argument value." when the
' dialog is built, before it is shown. Types 0 and 3 show the missing-picture text instead, and the
' dialog runs (here its function ends it at once with DlgEnd).
Function Ender(item$, action%, value%) As Boolean
    If action% = 1 Then DlgEnd 7
End Function

Sub Show(pictureType As Integer)
    Dim dlg As UserDialog
    Begin Dialog UserDialog 200, 100, .Ender
        Picture 10, 10, 80, 40, "no such picture.bmp", pictureType
        OKButton 100, 60, 50, 20
    End Dialog
    On Error Resume Next
    Err.Clear
    Debug.Print Dialog(dlg)
    Debug.Print pictureType; Err.Number; " "; Err.Description
    Err.Clear
    Dialog dlg
    Debug.Print pictureType; Err.Number
End Sub

Sub Main
    Show 16
    Show 19
    Show 0
    Show 3
End Sub
