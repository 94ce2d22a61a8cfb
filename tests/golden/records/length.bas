' Len of a record: elements laid out in order, each at a multiple of its alignment (up to 4), the
' size rounded up to the largest alignment
Type OneByte
    B As Byte
End Type

Type Mixed
    B As Byte
    I As Integer
    L As Long
    D As Double
End Type

Type Texts
    Fixed As String * 3
    S As String
    V As Variant
End Type

Type Nested
    B As Byte
    M As Mixed
    Arr() As Integer
End Type

Sub Main
    Dim a As OneByte, b As Mixed, c As Texts, d As Nested
    Debug.Print Len(a); Len(b); Len(c); Len(d); LenB(b)
    Dim v As Variant
    v = b
    Debug.Print Len(v)
    Debug.Print "end"
End Sub
