' Started by macro_run.bas through MacroRun: prints its command text and how often it ran.
Dim runs As Integer

Sub Main
    runs = runs + 1
    Debug.Print "target runs with [" & Command & "], run " & runs
End Sub
