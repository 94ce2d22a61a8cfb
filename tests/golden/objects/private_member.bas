'#Uses "lib/Counter.cls"
' Private members of a class are not reached through its objects.
Sub Main
    Dim c As New Counter
    Debug.Print c.m_total
End Sub
