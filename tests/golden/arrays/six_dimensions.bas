' Six dimensions, fixed and dynamic
Sub Main
    Dim f(1 To 2, 0 To 1, 1 To 2, 0 To 2, 1 To 2, 0 To 1) As Integer
    Dim a As Integer, b As Integer, c As Integer, d As Integer, e As Integer, g As Integer
    Dim total As Long
    For a = 1 To 2
     For b = 0 To 1
      For c = 1 To 2
       For d = 0 To 2
        For e = 1 To 2
         For g = 0 To 1
          f(a, b, c, d, e, g) = a * 10000 + b * 1000 + c * 100 + d * 10 + e + g
         Next g
        Next e
       Next d
      Next c
     Next b
    Next a
    Debug.Print f(2, 1, 2, 2, 2, 1); f(1, 0, 1, 0, 1, 0)
    For a = 1 To 6
        Debug.Print LBound(f, a); UBound(f, a);
    Next
    Debug.Print
    Dim v() As Long
    ReDim v(1, 1, 1, 1, 1, 1)
    v(1, 1, 1, 1, 1, 1) = 64
    v(0, 1, 0, 1, 0, 1) = 21
    Dim x As Variant
    For Each x In v
        total = total + x
    Next
    Debug.Print total; UBound(v, 6)
    ReDim Preserve v(1, 1, 1, 1, 1, 2)
    Debug.Print v(1, 1, 1, 1, 1, 1); v(0, 1, 0, 1, 0, 1); v(1, 1, 1, 1, 1, 2)
    Debug.Print "end"
End Sub
