'#Uses "lib/Button.cls"
'#Uses "lib/Listener.cls"
' A WithEvents variable of a class instance hears the events; two listeners both hear one raise, each in
' its own instance; an ended listener hears nothing more.
Dim WithEvents btn As Button

Private Sub btn_Renamed(ByVal NewName As String)
    Debug.Print "macro heard " & NewName
End Sub

Sub Main
    Dim one As New Listener, two As New Listener
    Set btn = New Button
    one.Watch btn
    two.Watch btn
    btn.Rename "alpha"
    Set two = Nothing
    btn.Rename "beta"
    Debug.Print "heard by one: " & one.Heard
End Sub
