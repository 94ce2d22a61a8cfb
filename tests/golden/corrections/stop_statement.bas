' Stop compiles as an instruction; it stops the run, and a host without a debugger ends it there.
Sub Main
    Debug.Print "before"
    Stop
    Debug.Print "after"
End Sub
