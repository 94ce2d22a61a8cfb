'#Uses "lib/Grid.cls"
'#Uses "lib/GridCell.cls"
' A late-bound access whose arguments the member does not take: the member's value without arguments is
' indexed (an array) or given the arguments through its default member (an object); a let that still
' fails lets the default member of the object the indexed getter gives.
Sub Main
    Dim g As Object
    Set g = New Grid
    Debug.Print g.Items(2); g.Items(3)
    g.Cells(1, 2) = 5
    Debug.Print g.Cells(3, 4).Value
    On Error Resume Next
    Debug.Print g.Items(9)
    Debug.Print "outside:"; Err.Number
    Err.Clear
    g.Items(0) = 1
    Debug.Print "array let:"; Err.Number; g.Items(0)
    Err.Clear
    Debug.Print g.Last(1)
    Debug.Print "object without index:"; Err.Number
End Sub
