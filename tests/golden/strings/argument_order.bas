' Arguments are evaluated from left to right: a function called by a later argument cannot change what
' an earlier argument read.
Dim s As String

Function Change(ByVal size As Integer) As Integer
    s = "changed"
    Change = size
End Function

Sub Main
    s = "original"
    Debug.Print Left(s, Change(2)); " "; s
    s = "again"
    Debug.Print InStr(Change(1), s, "e"); " "; s
    Debug.Print "done"
End Sub
