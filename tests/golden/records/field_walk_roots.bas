' The record of a field found straight from its root's array of records: a local array, a module-level
' array, a ByRef array parameter, an index past the end in a read and in a store (error 10023, trapped)
' and an array that ReDim shrinks while the loop reads it.
Type Person
    Name As String
    Age As Long
End Type

Dim crowd(3) As Person

Function Ages(ByRef group() As Person) As Long
    Dim i As Long
    For i = LBound(group) To UBound(group)
        Ages = Ages + group(i).Age + Len(group(i).Name)
    Next i
End Function

Sub Main
    Dim people(3) As Person, i As Long, total As Long, s As String, errors As Long
    Dim spare() As Person
    For i = 0 To 3
        people(i).Name = String(i + 1, "x")
        people(i).Age = 10 * i
        crowd(i).Name = people(i).Name & "y"
        crowd(i).Age = people(i).Age + 1
    Next i
    For i = 0 To 3
        s = people(i).Name
        crowd((i + 1) Mod 4).Name = s
        total = total + Len(people(i).Name) + crowd(i).Age + Len(crowd(i).Name)
    Next i
    Debug.Print total; Ages(people); Ages(crowd)

    On Error Resume Next
    For i = 2 To 5
        total = total + people(i).Age
        If Err.Number <> 0 Then errors = errors + 1: Err.Clear
        people(i).Name = s
        If Err.Number = 10023 Then errors = errors + 10: Err.Clear
    Next i
    Debug.Print total; errors; people(3).Name

    ReDim spare(2)
    errors = 0
    For i = 0 To 2
        spare(i).Age = i + 1
        If i = 1 Then ReDim spare(0)
        total = total + spare(i).Age
        If Err.Number = 10023 Then errors = errors + 1: Err.Clear
    Next i
    Debug.Print total; errors; spare(0).Age
End Sub
