'#Uses "lib/counter.bas"

Sub Main
    Debug.Print 100
End Sub
