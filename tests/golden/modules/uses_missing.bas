'#Uses "nothere.bas"
Sub Main
End Sub
