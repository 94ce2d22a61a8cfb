Public Greeting As String
Public Limit As Long

Private Sub Main
    Greeting = "hi"
    Limit = 3
End Sub

Public Function Describe() As String
    Describe = Greeting & "/" & Limit
End Function
