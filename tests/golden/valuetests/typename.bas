' TypeName of every kind.
Sub Main
    Dim v, s As String, i As Integer, d(2) As Double
    Debug.Print TypeName(v); " "; TypeName(Null); " "; TypeName(i); " "; TypeName(1&); " "; TypeName(1!); " "; TypeName(1.5)
    Debug.Print TypeName(CCur(1)); " "; TypeName(CDate(1)); " "; TypeName(s); " "; TypeName(True); " "; TypeName(CDec(1))
    Debug.Print TypeName(CByte(1)); " "; TypeName(CVErr(1)); " "; TypeName(Nothing); " "; TypeName(Array()); " "; TypeName(d)
    Debug.Print "done"
End Sub
