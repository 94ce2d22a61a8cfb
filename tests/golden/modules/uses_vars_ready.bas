'#Uses "lib/settings.bas"
' The used module's variables are set up before this module's Main runs

Sub Main
    Debug.Print Greeting; Limit
    Debug.Print Describe()
    Limit = Limit + 1
    Debug.Print Describe()
    Debug.Print "end"
End Sub
