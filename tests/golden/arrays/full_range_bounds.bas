' A dimension that spans every 32-bit bound holds 2^32 elements, more than an array can count: ReDim,
' ReDim Preserve and a fixed local array of that size fail with "Can't allocate large array." instead of
' making an array that reports those bounds but has no elements.
Sub Show(what As String)
    Debug.Print what; " "; Err.Number; " "; Err.Description
    Err.Clear
End Sub

Sub FixedFullRange()
    Dim f(-2147483647 - 1 To 2147483647) As Byte
    Debug.Print "never printed"; UBound(f)
End Sub

Sub Main
    Dim a() As Long
    Dim b() As Byte
    On Error Resume Next
    ReDim a(-2147483647 - 1 To 2147483647)
    Show "ReDim Long"
    Debug.Print UBound(a)
    Show "left undimensioned"
    ReDim b(1 To 2, -2147483647 - 1 To 2147483647)
    Show "ReDim Byte, last dimension"
    ReDim b(-2147483647 - 1 To 2147483647, 1 To 1)
    Show "ReDim Byte, first dimension"
    ReDim b(0 To 3)
    b(3) = 7
    ReDim Preserve b(-2147483647 - 1 To 2147483647)
    Show "Preserve, lower bound moved"
    Debug.Print UBound(b); b(3)
    ReDim a(-2147483647 - 1 To -2147483647 - 1)
    a(-2147483647 - 1) = 5
    ReDim Preserve a(-2147483647 - 1 To 2147483647)
    Show "Preserve to the full range"
    Debug.Print LBound(a); UBound(a); a(-2147483647 - 1)
    FixedFullRange
    Show "fixed"
End Sub
