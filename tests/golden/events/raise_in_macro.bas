' RaiseEvent belongs to class modules: a macro has no events to raise.
Sub Main
    Debug.Print "not run"
    RaiseEvent Clicked
End Sub
