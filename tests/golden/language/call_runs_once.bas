' A statement whose fast form calls a Function and then meets something the fast form leaves to the
' general code (an index outside the bounds, an Integer sum past the Integer range, a Variant of another
' kind, a ByRef argument of another kind) or an error (Long overflow, division by zero): the Function
' runs once per execution of the statement, as the general code runs it.
Dim calls As Long

Function One() As Long
    calls = calls + 1
    One = 1
End Function

Function Small() As Integer
    calls = calls + 1
    Small = 1
End Function

Function Twice(ByRef n As Long) As Long
    calls = calls + 1
    Twice = 2 * n
End Function

Sub Report(ByVal label As String, ByVal value As Variant)
    Debug.Print label; calls; value; Err.Number
    calls = 0
    Err.Clear
End Sub

Sub Main
    Dim a(3) As Long, x As Long, i As Long, z As Long, big As Long, v As Variant, w As Variant
    On Error Resume Next
    For i = 1 To 3
        x = One() + a(i + 1)
    Next i
    Report "element", x
    big = 2147483647
    For i = 1 To 3
        x = 0
        x = One() + big * (i \ 3)
    Next i
    Report "overflow", x
    For i = 1 To 3
        x = One() \ (z + 3 - i)
    Next i
    Report "divide", x
    For i = 1 To 3
        x = One() Mod (3 - i)
    Next i
    Report "modulo", x
    For i = 1 To 3
        x = Small() + 32767 * (i \ 3)
    Next i
    Report "integer", x
    w = 1
    For i = 1 To 4
        If i = 3 Then w = "text"
        v = One() + w
    Next i
    Report "variant", v
    For i = 1 To 3
        x = One() + Twice(i)
    Next i
    Report "byref", x
End Sub
