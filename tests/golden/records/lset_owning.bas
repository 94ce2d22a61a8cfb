' Records whose fields own strings, objects or arrays cannot be copied byte by byte with LSet.
Type Named
    Name As String
End Type

Type Numbered
    N As Long
End Type

Sub Main
    Dim a As Named, b As Numbered
    LSet b = a
End Sub
