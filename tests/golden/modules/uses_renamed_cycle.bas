' A cycle of '#Uses lines whose names grow each round (the paths differ) ends in 10009 instead of
' loading without end.
'#Uses "lib/renamed_cycle.bas"
Sub Main
    Debug.Print "never runs"
End Sub
