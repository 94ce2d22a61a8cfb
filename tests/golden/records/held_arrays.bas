' Arrays held by records: ReDim, ReDim Preserve, Erase, and copies of the record copy them too
Type Point
    X As Integer
End Type

Type Poly
    Pts() As Point
    Names() As String
    Fixed(2) As Long
End Type

Sub Main
    Dim p As Poly
    ReDim p.Pts(1 To 2)
    p.Pts(2).X = 5
    ReDim Preserve p.Pts(1 To 3)
    p.Pts(3).X = 6
    Debug.Print p.Pts(2).X; p.Pts(3).X; UBound(p.Pts)
    ReDim p.Names(1) As String
    p.Names(1) = "n"
    Dim q As Poly
    q = p
    q.Pts(2).X = 50
    Debug.Print p.Pts(2).X; q.Pts(2).X; q.Names(1)
    p.Fixed(1) = 9
    Erase p.Fixed, p.Names
    Debug.Print p.Fixed(1); UBound(p.Fixed)
    On Error Resume Next
    Debug.Print p.Names(1)
    Debug.Print Err.Number
    Err.Clear
    Erase p.Pts
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Dim all(1) As Poly
    ReDim all(1).Names(4)
    all(1).Names(4) = "deep"
    Debug.Print all(1).Names(4); UBound(all(1).Names)
    Debug.Print "end"
End Sub
