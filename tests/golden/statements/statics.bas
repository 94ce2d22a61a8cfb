' Static locals and module variables
Dim calls As Integer

Function NextId() As Integer
    Static last As Integer
    last = last + 10
    calls = calls + 1
    NextId = last
End Function

Sub Main
    Debug.Print NextId(); NextId(); NextId()
    Debug.Print calls
End Sub
