' A Variant field that holds an array is indexed where it is read (u.v(1), people(1).v(0), u.v(1)(1))
' and where an element is stored (u.v(2) = 9, people(i).v(1) = ...).
Type U
    v As Variant
    n As Long
End Type
Sub Main
    Dim u As U, people(1) As U, x, i As Integer
    u.v = Array(1, Array(5, 6), 3)
    Debug.Print u.v(0); u.v(1)(1); UBound(u.v); u.v(0) + u.v(2)
    people(1).v = Array("a", "b")
    Debug.Print people(1).v(1); TypeName(people(1).v(0))
    x = u.v(1)
    Debug.Print x(0)
    u.v(2) = 9
    For i = 0 To 1
        people(i).v = Array("c", "d")
        people(i).v(1) = "x" & i
    Next
    Debug.Print u.v(2); people(0).v(1); people(1).v(1); people(1).v(0)
    On Error Resume Next
    u.v(5) = 1
    Debug.Print "store outside:"; Err.Number; u.v(2)
    Err.Clear
    Debug.Print u.v(7)
    Debug.Print Err.Number
    Err.Clear
    u.v = 5
    Debug.Print u.v(0)
    Debug.Print Err.Number
End Sub
