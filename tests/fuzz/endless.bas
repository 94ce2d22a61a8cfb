' A macro that never ends by itself, for the fuzzer's watchdog: each statement is quick, so it ends as
' soon as it is asked to.
Sub Main
    Dim n As Long
    Do
        n = (n + 1) Mod 1000
    Loop
End Sub
