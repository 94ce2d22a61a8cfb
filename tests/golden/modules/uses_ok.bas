'#Uses "lib/fine.bas"

Sub Main
End Sub
