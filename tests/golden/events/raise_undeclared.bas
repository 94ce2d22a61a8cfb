'#Uses "lib/Undeclared.cls"
' RaiseEvent names an event that its class module declares; another name is a compile error there.
Sub Main
    Debug.Print "not run"
End Sub
