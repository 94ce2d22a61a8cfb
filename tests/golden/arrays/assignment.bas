' Whole arrays: copies into dynamic arrays, results of functions, Byte arrays from Strings, by-reference
' parameters
Function Squares(n As Integer) As Long()
    Dim r() As Long
    Dim i As Integer
    ReDim r(1 To n)
    For i = 1 To n
        r(i) = i * i
    Next
    Squares = r
End Function

Sub Grow(a() As Integer, n As Integer)
    ReDim Preserve a(n)
    a(n) = n
End Sub

Sub Main
    Dim a() As Long, b() As Long
    a = Squares(3)
    b = a
    b(1) = 100
    Debug.Print a(1); b(1); UBound(b)
    Dim bytes() As Byte
    bytes = "Hi"
    Debug.Print LBound(bytes); UBound(bytes); bytes(0); bytes(1); bytes(2); bytes(3)
    bytes = ""
    Debug.Print UBound(bytes)
    Dim g() As Integer
    ReDim g(1)
    Grow g, 4
    Debug.Print UBound(g); g(4)
    Dim fixed(2) As Integer
    On Error Resume Next
    Grow fixed, 5
    Debug.Print Err.Number; Err.Description; UBound(fixed)
    Err.Clear
    Dim texts() As String
    texts = a
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Dim v As Variant
    v = 5
    a = v
    Debug.Print Err.Number; UBound(a)
    Debug.Print "end"
End Sub
