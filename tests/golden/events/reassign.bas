'#Uses "lib/Button.cls"
' Reassigning a WithEvents variable moves it to the new object; Nothing stops the events; an event
' without a procedure changes nothing.
Dim WithEvents btn As Button

Private Sub btn_Clicked(Cancel As Boolean)
    Cancel = True
End Sub

Sub Main
    Dim first As Button, second As Button
    Set first = New Button
    Set second = New Button
    first.Rename "first"
    second.Rename "second"
    Set btn = first
    first.Click
    Set btn = second
    first.Click
    second.Click
    Set btn = Nothing
    second.Click
    Debug.Print "done"
End Sub
