' MacroRun and MacroRunThis start another macro from a running one: the start is queued, so the started
' macro runs before the caller's next statement, with its own Command text, and the caller goes on after.
Sub Main
    Debug.Print "caller starts with [" & Command & "]"
    MacroRun "lib/run_target.bas", "first"
    Debug.Print "caller goes on"
    MacroRun "lib/run_target.bas"
    MacroRunThis "Sub Main" & vbCrLf & "    Debug.Print ""text macro, command ["" & Command & ""]""" & vbCrLf & "End Sub"
    Debug.Print "caller's command is still [" & Command & "]"
    ' A macro that does not exist, or one that takes part in the run, is an error of the calling statement.
    On Error Resume Next
    MacroRun "lib/no_such_macro.bas"
    Debug.Print Err.Number; " "; Err.Description
    Err.Clear
    MacroRun "macro_run.bas"
    Debug.Print Err.Number; " "; Err.Description
End Sub
