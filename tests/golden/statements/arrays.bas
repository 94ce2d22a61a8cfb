' Fixed and dynamic arrays, For Each, ParamArray, string statements
Dim table(1 To 3, 1 To 2) As Integer

Function Total(ParamArray values() As Variant) As Double
    Dim v As Variant
    For Each v In values
        Total = Total + v
    Next
End Function

Sub Main
    Dim r As Integer, c As Integer
    For r = 1 To 3
        For c = 1 To 2
            table(r, c) = r * 10 + c
        Next c
    Next r
    Debug.Print table(3, 2); UBound(table, 1); UBound(table, 2)
    Dim names() As String
    ReDim names(2)
    names(0) = "ann": names(1) = "bo": names(2) = "cy"
    ReDim Preserve names(3)
    names(3) = "di"
    Dim n As Variant
    For Each n In names
        Debug.Print n; " ";
    Next
    Debug.Print
    Debug.Print Total(1, 2.5, 3)
    Dim s As String
    s = "hello world"
    Mid(s, 1, 1) = "J"
    RSet s = "end"
    Debug.Print s
End Sub
