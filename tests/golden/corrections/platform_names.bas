' PortInt is the platform's integer (Long); Win16 and Win32 are the constants False and True.
Option Explicit
Const OnWin32 = Win32
Sub Main
    Dim p As PortInt
    p = 70000
    Debug.Print p; VarType(p)
    Debug.Print Win16; Win32; OnWin32
    If Win32 Then Debug.Print "32-bit"
End Sub
