' A Type element line holds one element: text after it is reported, not skipped (the line below once
' compiled as a Variant array element named Names, and a second Names beside it broke record copies)
Type Poly
    Count As Long
    Names() UBound( As String
    Tags() As String
End Type

Sub Main
    Dim p As Poly, q As Poly
    q = p
    Debug.Print "never"
End Sub
