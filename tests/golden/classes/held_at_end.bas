'#Uses "lib/Counter.cls"
' A module-level variable still holds an instance when the run ends: the instance goes when the macro
' is unloaded after its run, and its terminator prints then.
Dim held As Counter
Dim spare As New Counter

Sub Main
    Set held = New Counter
    held.Name = "held"
    held.Add 4
    Debug.Print "end of Main"
End Sub
