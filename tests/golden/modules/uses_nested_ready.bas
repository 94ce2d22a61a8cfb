' Modules used through other used modules are set up deepest first, before Main runs.
'#Uses "lib/outer_ready.bas"
Sub Main
    Debug.Print "main sees"; OuterValue
End Sub
