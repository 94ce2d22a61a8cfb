' The errors of the built-ins, trapped one after another.
Sub Try(ByVal label As String)
    Debug.Print label; ": "; Err.Number; " "; Err.Description
    Err.Clear
End Sub

Sub Main
    Dim v
    On Error Resume Next
    v = Left("abc", -1)
    Try "Left -1"
    v = Mid("abc", 0)
    Try "Mid 0"
    v = InStr(0, "abc", "a")
    Try "InStr 0"
    v = InStrRev("abc", "a", -2)
    Try "InStrRev -2"
    v = Replace("abc", "a", "b", 1, -2)
    Try "Replace count -2"
    v = Chr(256)
    Try "Chr 256"
    v = CInt(40000)
    Try "CInt 40000"
    v = CInt("x")
    Try "CInt x"
    v = CLng(Null)
    Try "CLng Null"
    v = CVErr(70000)
    Try "CVErr 70000"
    v = Sqr(-1)
    Try "Sqr -1"
    v = Log(0)
    Try "Log 0"
    v = Round(1, -1)
    Try "Round places -1"
    v = StrConv("a", 3)
    Try "StrConv 3"
    v = RGB(0, 0, 256)
    Try "RGB 256"
    v = QBColor(16)
    Try "QBColor 16"
    v = UBound(Array(), 2)
    Try "UBound 2"
    Error 5
    Try "Error 5"
    Error 10061
    Try "Error 10061"
    Error
    Try "Error without a number"
    Error 70000
    Try "Error 70000"
    v = Space(-1)
    Try "Space -1"
    Debug.Print "done"
End Sub
