'#Uses "Accumulator.cls"
' Method calls on a class-module instance in a loop.
Sub Main
    Dim acc As Accumulator
    Dim i As Long
    Set acc = New Accumulator
    For i = 1 To 1500000
        acc.Add i
    Next i
    Debug.Print "checksum " & (acc.Total() + acc.Count())
End Sub
