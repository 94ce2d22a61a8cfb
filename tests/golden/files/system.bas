' Environ, application settings, Shell and the Clipboard.
Sub Main
    Dim i As Integer, entry As String, found As Boolean
    Debug.Print Environ("TEMP") <> ""; "[" & Environ("BB_NOT_SET_ANYWHERE") & "]"
    ' Environ(i) gives NAME=value; the entry for TEMP matches Environ("TEMP").
    i = 1
    Do
        entry = Environ(i)
        If UCase(Left(entry, 5)) = "TEMP=" Then found = Mid(entry, 6) = Environ("TEMP")
        i = i + 1
    Loop Until entry = ""
    Debug.Print "TEMP entry:"; found; InStr(Environ(1), "=") > 1
    On Error Resume Next
    entry = Environ(0)
    Debug.Print "Environ(0):"; Err.Number; Err.Description: Err.Clear
    On Error GoTo 0

    DeleteSetting "BrannocGolden", "Window"
    Debug.Print "[" & GetSetting("BrannocGolden", "Window", "Left") & "] " & GetSetting("BrannocGolden", "Window", "Left", "10")
    Debug.Print IsEmpty(GetAllSettings("BrannocGolden", "Window"))
    SaveSetting "BrannocGolden", "Window", "Left", "120"
    SaveSetting "BrannocGolden", "Window", "Top", 45
    Debug.Print GetSetting("BrannocGolden", "Window", "Left", "10")
    Dim all
    all = GetAllSettings("BrannocGolden", "Window")
    Debug.Print LBound(all, 1); UBound(all, 1); LBound(all, 2); UBound(all, 2)
    For i = 0 To UBound(all, 1)
        Debug.Print all(i, 0); "="; all(i, 1)
    Next
    DeleteSetting "BrannocGolden", "Window", "Left"
    Debug.Print "[" & GetSetting("BrannocGolden", "Window", "Left") & "]"; GetSetting("BrannocGolden", "Window", "Top")
    DeleteSetting "BrannocGolden", "Window"
    Debug.Print "[" & GetSetting("BrannocGolden", "Window", "Top") & "]"
    DeleteSetting "BrannocNeverSaved", "Anything"
    On Error Resume Next
    SaveSetting "", "Window", "Left", "1"
    Debug.Print "empty name:"; Err.Number; Err.Description: Err.Clear
    entry = GetSetting("BrannocGolden", "", "Left")
    Debug.Print "empty section:"; Err.Number: Err.Clear
    DeleteSetting "BrannocGolden", "Window", ""
    Debug.Print "empty key:"; Err.Number: Err.Clear
    all = GetAllSettings("", "Window")
    Debug.Print "GetAllSettings:"; Err.Number: Err.Clear
    DeleteSetting "BrannocGolden", "Window"

    Dim id As Long
    id = Shell("cmd.exe /c exit", 0)
    Debug.Print "Shell id:"; id > 0; Err.Number
    id = Shell("cmd.exe /c exit", 10)
    Debug.Print "style 10:"; Err.Number; Err.Description: Err.Clear
    id = Shell("bb-no-such-program.exe")
    Debug.Print "missing program:"; Err.Number; Err.Description <> "": Err.Clear
    On Error GoTo 0

    Clipboard "clip text 1"
    Debug.Print Clipboard
    Clipboard ""
    Debug.Print "[" & Clipboard() & "]"
End Sub
