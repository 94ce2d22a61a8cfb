'#Uses "lib/Button.cls"
' RaiseEvent in a class instance runs the procedures named after the WithEvents variables that hold it;
' a by-reference argument comes back to the raiser.
Dim WithEvents btn As Button

Private Sub btn_Clicked(Cancel As Boolean)
    Debug.Print "btn_Clicked with Cancel " & Cancel
    Cancel = True
End Sub

Private Sub btn_Renamed(ByVal NewName As String)
    Debug.Print "btn_Renamed to " & NewName
End Sub

Sub Main
    Set btn = New Button
    btn.Rename "first"
    btn.Click
    Debug.Print "done"
End Sub
