' ReDim Preserve keeps the elements: growing and shrinking the last dimension
Sub Main
    Dim a() As Long
    Dim i As Long
    ReDim a(1 To 10)
    For i = 1 To 10
        a(i) = i * 11
    Next
    ReDim Preserve a(1 To 20)
    Debug.Print LBound(a); UBound(a); a(1); a(10); a(11); a(20)
    ReDim Preserve a(1 To 4)
    Debug.Print UBound(a); a(4)
    Dim names() As String
    ReDim names(0 To 1)
    names(0) = "ann": names(1) = "bo"
    ReDim Preserve names(0 To 2)
    Debug.Print names(0); names(1); names(2)
    ReDim Preserve names(0 To 0)
    Debug.Print UBound(names); names(0)
    Dim grid() As Integer
    ReDim grid(1 To 2, 1 To 3)
    grid(1, 1) = 11: grid(2, 3) = 23
    ReDim Preserve grid(1 To 2, 1 To 5)
    grid(2, 5) = 25
    Debug.Print grid(1, 1); grid(2, 3); grid(2, 4); grid(2, 5); UBound(grid, 2)
    ReDim Preserve grid(1 To 2, 1 To 1)
    Debug.Print grid(1, 1); UBound(grid, 1); UBound(grid, 2)
    Dim v As Variant
    ReDim v(2)
    v(2) = "kept"
    ReDim Preserve v(5)
    Debug.Print v(2); v(5); UBound(v)
    Debug.Print "end"
End Sub
