' A new record holds the zero value of every element
Type Everything
    B As Byte
    F As Boolean
    I As Integer
    L As Long
    S As Single
    D As Double
    C As Currency
    T As Date
    Txt As String
    Fixed As String * 3
    V As Variant
    O As Object
    Nums(1) As Integer
    Dyn() As Long
End Type

Sub Main
    Dim e As Everything
    Debug.Print e.B; e.F; e.I; e.L; e.S; e.D; e.C; e.T
    Debug.Print e.Txt; e.Fixed; e.V; e.O Is Nothing; e.Nums(1); UBound(e.Nums)
    On Error Resume Next
    Debug.Print UBound(e.Dyn)
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
