' ReDim rules: bounds in order, Preserve may change only the last dimension's upper bound
Sub Show(what As String)
    Debug.Print what; " "; Err.Number; " "; Err.Description
    Err.Clear
End Sub

Sub Main
    Dim a() As Integer
    Dim m() As Integer
    On Error Resume Next
    ReDim a(1 To 10)
    a(3) = 3
    ReDim Preserve a(0 To 10)
    Show "lower of the last"
    Debug.Print UBound(a); a(3)
    ReDim Preserve a(1 To 10, 1 To 2)
    Show "more dimensions"
    ReDim m(1 To 2, 1 To 2)
    ReDim Preserve m(1 To 3, 1 To 2)
    Show "upper of the first"
    ReDim Preserve m(0 To 2, 1 To 2)
    Show "lower of the first"
    ReDim Preserve m(1 To 2, 3 To 2)
    Show "last reversed"
    ReDim a(5 To 1)
    Show "reversed"
    Debug.Print a(1)
    Show "released before"
    ReDim a(2, 3, 4)
    Debug.Print UBound(a, 3)
    Debug.Print "end"
End Sub
