' For Each over an array without storage raises "Array is not dimensioned." before any pass; over a
' value that is no array it is a type mismatch
Dim passes As Integer

Sub Walk(group As Variant)
    Dim x As Variant
    For Each x In group
        passes = passes + 1
    Next
End Sub

Sub WalkIntegers(group() As Integer)
    Dim x As Variant
    For Each x In group
        passes = passes + 1
    Next
End Sub

Sub Main
    Dim d() As Integer
    On Error Resume Next
    WalkIntegers d
    Debug.Print Err.Number; Err.Description; passes
    Err.Clear
    Walk d
    Debug.Print Err.Number; Err.Description; passes
    Err.Clear
    Walk Empty
    Debug.Print Err.Number; Err.Description; passes
    Err.Clear
    ReDim d(1)
    WalkIntegers d
    Debug.Print Err.Number; passes
    Debug.Print "end"
End Sub
