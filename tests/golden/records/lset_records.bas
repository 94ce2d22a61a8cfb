' LSet between records of plain data copies the source's bytes from the start, as many as both have.
Type Pair
    A As Integer
    B As Integer
End Type

Type Whole
    L As Long
    Tag As String * 2
End Type

Type Wide
    L As Long
    Tag As String * 2
    Extra As Double
End Type

Sub Main
    Dim p As Pair, w As Whole, x As Wide
    p.A = 1: p.B = 2
    LSet w = p
    Debug.Print w.L = 65536 * 2 + 1
    w.L = 7: w.Tag = "ok"
    x.Extra = 2.5
    LSet x = w
    Debug.Print x.L; x.Tag; x.Extra
    LSet p = x
    Debug.Print p.A; p.B
    LSet x = x
    Debug.Print x.L; x.Tag
End Sub
