'#Uses "lib/Button.cls"
' An error in an event procedure comes back through RaiseEvent to the code that made the raiser act,
' where it can be trapped.
Dim WithEvents btn As Button

Private Sub btn_Renamed(ByVal NewName As String)
    If NewName = "" Then Err.Raise 1001, , "A name is required"
    Debug.Print "renamed to " & NewName
End Sub

Sub Main
    Set btn = New Button
    On Error Resume Next
    btn.Rename ""
    Debug.Print Err.Number & " " & Err.Description
    Err.Clear
    btn.Rename "ok"
    Debug.Print "error " & Err.Number
End Sub
