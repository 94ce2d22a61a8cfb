' Ten million Long elements (40 MB) allocated, filled and summed
Sub Main
    Dim a() As Long
    Dim i As Long
    Dim x As Variant
    Dim total As Double
    ReDim a(1 To 10000000)
    For i = 1 To 10000000
        a(i) = i
    Next
    For Each x In a
        total = total + x
    Next
    Debug.Print total; LBound(a); UBound(a); a(10000000)
    Erase a
    Debug.Print "end"
End Sub
