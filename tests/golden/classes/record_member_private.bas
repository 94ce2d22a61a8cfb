' A class's own record type may be taken and given by its private members.
'#Uses "lib/RecordKeeper.cls"
Sub Main
    Dim c As New RecordKeeper
    Debug.Print c.Keep(1, 2)
End Sub
