'#Uses "lib/Counter.cls"
' Module-level object variables, an object passed to a parameter declared as the class, a Function
' that returns a new instance.
Dim shared As New Counter
Dim kept As Counter

Sub Fill(target As Counter, ByVal times As Integer)
    Dim i As Integer
    For i = 1 To times
        target.Add i
    Next
End Sub

Function Make(ByVal label As String) As Counter
    Dim made As Counter
    Set made = New Counter
    made.Name = label
    Set Make = made
End Function

Sub Main
    Debug.Print "start"
    shared.Name = "shared"
    Fill shared, 4
    Debug.Print shared.Total
    Set kept = Make("made")
    Fill kept, 2
    Debug.Print kept.Name; kept.Total()
    Set kept = Nothing
    Set shared = Nothing
    Debug.Print "end of Main"
End Sub
