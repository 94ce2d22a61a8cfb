' A class whose member id attribute names no constant does not compile.
'#Uses "lib/BadMemberId.cls"
Sub Main
    Dim c As New BadMemberId
    Debug.Print c.Value
End Sub
