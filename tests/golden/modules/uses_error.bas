'#Uses "lib/broken.bas"

Sub Main
End Sub
