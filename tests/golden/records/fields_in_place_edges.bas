' Fields and strings read in place where the storage moves or the reads meet calls: an array of records
' grown with ReDim Preserve inside the loop that reads it, a ByRef array of records, Len after a Function
' call in one statement (the call runs once), comparisons of Empty and Null Variants with strings, and a
' Do loop whose condition compares a growing string.
Type Cell
    Value As Long
    Weight As Double
    Text As String * 3
End Type

Dim calls As Long

Function Bump() As Long
    calls = calls + 1
    Bump = 10
End Function

Function Total(ByRef cells() As Cell) As Double
    Dim i As Long
    For i = LBound(cells) To UBound(cells)
        Total = Total + cells(i).Value * cells(i).Weight + Len(cells(i).Text)
    Next i
End Function

Sub Main
    Dim cells() As Cell, i As Long, sum As Long, s As String, v As Variant, n As Long
    ReDim cells(0)
    For i = 1 To 60
        ReDim Preserve cells(i)
        cells(i).Value = i
        cells(i).Weight = 0.5
        cells(i).Text = "ab"
        sum = sum + cells(i).Value + cells(i - 1).Value + Len(cells(i).Text)
    Next i
    Debug.Print sum; Total(cells)

    s = "abc"
    For i = 1 To 5
        n = Bump() + Len(s) + cells(i).Value
    Next i
    Debug.Print calls; n

    n = 0
    For i = 1 To 6
        If v = "" Then n = n + 1
        If v < "a" Then n = n + 10
        If i = 3 Then v = Null
    Next i
    Debug.Print n

    s = ""
    Do Until s = "zzzz"
        s = s & "z"
    Loop
    Debug.Print s; Len(s)
End Sub
