' Declare'd functions of kernel32 and user32: ByVal numbers and strings, records passed by reference,
' a buffer the function fills, ANSI and wide entries found from the plain name.
Declare Function lstrlenA Lib "kernel32" (ByVal s As String) As Long
Declare Function lstrlen Lib "kernel32" (ByVal s As String) As Long
Declare Function GetTickCount Lib "kernel32" () As Long
Declare Function MulDiv Lib "kernel32.dll" (ByVal a As Long, ByVal b As Long, ByVal c As Long) As Long
Declare Function GetTempPath Lib "kernel32" Alias "GetTempPathA" (ByVal size As Long, ByVal buffer As String) As Long
Declare Function InterlockedIncrement Lib "kernel32" (n As Long) As Long
Declare Sub GetLocalTime Lib "kernel32" (t As SYSTEMTIME)
Declare Function SetRect Lib "user32" (r As RECT, ByVal l As Long, ByVal t As Long, ByVal rr As Long, ByVal b As Long) As Long
Declare Function OffsetRect Lib "user32" (r As RECT, ByVal dx As Long, ByVal dy As Long) As Boolean
Declare Function CharUpper Lib "user32" (ByVal text As String) As Long

Type SYSTEMTIME
    wYear As Integer
    wMonth As Integer
    wDayOfWeek As Integer
    wDay As Integer
    wHour As Integer
    wMinute As Integer
    wSecond As Integer
    wMilliseconds As Integer
End Type

Type RECT
    Left As Long
    Top As Long
    Right As Long
    Bottom As Long
End Type

Sub Main
    Debug.Print lstrlenA("hello"); lstrlen("abc")
    Debug.Print GetTickCount() <> 0
    Debug.Print MulDiv(10, 20, 4)
    Dim buffer As String, n As Long
    buffer = String(260, " ")
    n = GetTempPath(260, buffer)
    Debug.Print n > 0; Mid(buffer, n, 1) = "\"
    Dim c As Long
    c = 41
    Debug.Print InterlockedIncrement(c); c
    Dim t As SYSTEMTIME
    GetLocalTime t
    Debug.Print t.wMonth >= 1 And t.wMonth <= 12; t.wYear > 2000
    Dim r As RECT
    Debug.Print SetRect(r, 1, 2, 30, 40); r.Left; r.Top; r.Right; r.Bottom
    Debug.Print OffsetRect(r, 10, 100); r.Left; r.Top; r.Right; r.Bottom
    Dim s As String
    s = "mixed Case"
    CharUpper s
    Debug.Print s
    Debug.Print "end"
End Sub
