' Words that the token table uses to name token kinds are ordinary names.
Function Other(ByVal reserved As Integer) As String
    Other = "+" & reserved
End Function

Sub Main
    Dim operator As Integer
    operator = 2
    Debug.Print operator; Other(42)
    Debug.Print "done"
End Sub
