Type Pair
    a As Integer
    b As Integer
End Type

Sub Main
    Dim p As Pair, q As Pair
    Dim v As Variant
    p.a = 1
    v = p
    On Error Resume Next
    LSet v = q
    Debug.Print Err.Number; " "; Err.Description
    Err.Clear
    RSet v = "text"
    Debug.Print Err.Number; " "; Err.Description
    Err.Clear
    ' a Variant holding text still aligns
    Dim s As Variant
    s = "abcdef"
    LSet s = "xy"
    Debug.Print "["; s; "]"; Err.Number
End Sub
