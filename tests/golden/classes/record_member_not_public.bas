' A class whose public member takes a record of the class's own type does not compile.
'#Uses "lib/RecordTaker.cls"
Sub Main
    Dim c As New RecordTaker
    Debug.Print "never runs"
End Sub
