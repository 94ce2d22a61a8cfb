' Arrays of every element kind start at their zero values and keep what is stored
Sub Main
    Dim bytes(1) As Byte, flags(1) As Boolean, ints(1) As Integer, longs(1) As Long
    Dim singles(1) As Single, doubles(1) As Double, money(1) As Currency, days(1) As Date
    Dim texts(1) As String, codes(1) As String * 2, anything(1) As Variant, things(1) As Object
    Debug.Print bytes(0); flags(0); ints(0); longs(0); singles(0); doubles(0); money(0); days(0)
    Debug.Print texts(0); codes(0); anything(0); things(0)
    bytes(1) = 255: flags(1) = True: ints(1) = -7: longs(1) = 70000
    singles(1) = 1.5: doubles(1) = 2.25: money(1) = 3.5: days(1) = #1/2/2000#
    texts(1) = "text": codes(1) = "XYZ": anything(1) = "any": Set things(1) = Nothing
    Debug.Print bytes(1); flags(1); ints(1); longs(1); singles(1); doubles(1); money(1); days(1)
    Debug.Print texts(1); codes(1); anything(1); things(1)
    ints(0) = 2.6
    longs(0) = "12"
    anything(0) = 3
    Debug.Print ints(0); longs(0); anything(0)
    On Error Resume Next
    bytes(0) = 256
    Debug.Print Err.Number; bytes(0)
    Debug.Print "end"
End Sub
