' Long, Integer, Boolean and Double fields of records, and Len of strings read where they are stored,
' used in loops so that the procedure's fast form reads them: records in locals, arrays of records,
' nested records, With blocks, ByRef records and module-level records; Len of String variables, array
' elements, String, fixed-length String and Variant fields, constants and Mid parts. An index outside the
' bounds, an array of records not yet dimensioned, a Variant field holding a number and Len of Null take
' the general way and give its results and errors.
Type Inner
    Weight As Double
    Label As String * 6
End Type

Type Item
    Count As Long
    Small As Integer
    Flag As Boolean
    Name As String
    Note As Variant
    Inside As Inner
End Type

Dim shared As Item
Dim stock(3) As Item

Function Sum(ByRef it As Item, ByVal times As Long) As Double
    Dim i As Long
    For i = 1 To times
        Sum = Sum + it.Count + it.Small + it.Inside.Weight - it.Flag
    Next i
End Function

Sub Main
    Dim i As Long, k As Long, total As Long, real As Double, one As Item, later() As Item
    Dim s As String, names(2) As String
    For i = 0 To 3
        stock(i).Count = i * 10
        stock(i).Small = i - 2
        stock(i).Flag = (i Mod 2 = 1)
        stock(i).Name = String(i + 1, "x")
        stock(i).Note = "note" & i
        stock(i).Inside.Weight = i + 0.25
        stock(i).Inside.Label = "L" & i
    Next i
    one.Count = 7: one.Small = -3: one.Flag = True: one.Inside.Weight = 1.5: one.Name = "single"
    shared = stock(2)

    For i = 1 To 400
        k = i Mod 4
        total = total + stock(k).Count + stock(k).Small - stock(k).Flag
        real = real + stock(k).Inside.Weight * 2
        total = total + one.Count + one.Small + shared.Count + Len(stock(k).Name) + Len(stock(k).Inside.Label)
    Next i
    Debug.Print total; real
    Debug.Print Sum(one, 100); Sum(stock(3), 10); Sum(shared, 1)

    With stock(1)
        For i = 1 To 50
            total = total - .Count - .Small + Len(.Name)
        Next i
    End With
    Debug.Print total

    names(0) = "": names(1) = "four": names(2) = "seven!!"
    s = "abcdef"
    total = 0
    For i = 1 To 300
        total = total + Len(s) + Len(names(i Mod 3)) + Len("const") + Len(Mid(s, 2, 3)) + Len(stock(i Mod 4).Note)
    Next i
    Debug.Print total

    ' The general way: a Variant field holding a number, an index outside the bounds, no storage, Null.
    stock(2).Note = 12345
    total = 0
    For i = 1 To 8
        total = total + Len(stock(i Mod 4).Note)
    Next i
    Debug.Print total
    On Error Resume Next
    total = 0
    For i = 2 To 5
        total = total + stock(i).Count
        Debug.Print i; total; Err.Number
        Err.Clear
    Next i
    total = later(1).Count
    Debug.Print "not dimensioned"; Err.Number
    Err.Clear
    Dim v As Variant
    v = Null
    Debug.Print IsNull(Len(v)); Len(v)
End Sub
