' Two elements of one name in a Type are refused (in any letter case)
Type Poly
    Names() As Variant
    Count As Long
    names() As String
End Type

Sub Main
    Dim p As Poly, q As Poly
    ReDim p.Names(1)
    q = p
    Debug.Print "never"
End Sub
