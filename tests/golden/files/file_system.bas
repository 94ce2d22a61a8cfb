' Folders and files: Dir with patterns and attribute masks, Kill, MkDir, RmDir, Name, FileCopy, ChDir,
' ChDrive, CurDir, FileLen, FileDateTime, GetAttr and SetAttr, with their errors.
Sub MakeFile(f As String, text As String)
    Open f For Output As #1
    Print #1, text;
    Close #1
End Sub

Sub Main
    Dim folder As String, start As String, name As String, listed As String
    start = CurDir
    folder = Environ("TEMP") & "\bbfiles"
    MkDir folder
    MkDir folder & "\sub"
    MakeFile folder & "\a.txt", "12345"
    MakeFile folder & "\b.txt", "xy"
    MakeFile folder & "\c.dat", ""

    ' Dir lists the pattern's entries in turn and "" after the last one (and again after that).
    name = Dir(folder & "\*.txt")
    Do While name <> ""
        listed = listed & name & " "
        name = Dir
    Loop
    Debug.Print listed; "[" & Dir & "]"
    ' Folders only with vbDirectory; "." and ".." are folders too.
    listed = ""
    name = Dir(folder & "\", vbDirectory)
    Do While name <> ""
        listed = listed & name & " "
        name = Dir()
    Loop
    Debug.Print listed
    ' A read-only file is listed only when the mask holds vbReadOnly.
    SetAttr folder & "\b.txt", vbReadOnly
    Debug.Print GetAttr(folder & "\b.txt"); GetAttr(folder & "\a.txt") And Not vbArchive; GetAttr(folder & "\sub") And vbDirectory
    Debug.Print "[" & Dir(folder & "\b.txt") & "] [" & Dir(folder & "\b.txt", vbReadOnly) & "]"
    SetAttr folder & "\b.txt", vbNormal
    Debug.Print GetAttr(folder & "\b.txt") And Not vbArchive

    Debug.Print FileLen(folder & "\a.txt"); FileLen(folder & "\c.dat")
    Debug.Print VarType(FileDateTime(folder & "\a.txt")); Abs(DateDiff("n", FileDateTime(folder & "\a.txt"), Now)) < 10

    FileCopy folder & "\a.txt", folder & "\copy.txt"
    FileCopy folder & "\b.txt", folder & "\copy.txt"
    Debug.Print "copy:"; FileLen(folder & "\copy.txt")
    Name folder & "\copy.txt" As folder & "\sub\moved.txt"
    Debug.Print "[" & Dir(folder & "\copy.txt") & "] [" & Dir(folder & "\sub\moved.txt") & "]"

    ChDir folder & "\sub"
    Debug.Print Right(CurDir, 10); " "; Right(CurDir(Left(folder, 1)), 10)
    ChDrive Left(folder, 1)
    ChDrive ""
    ChDir start

    On Error Resume Next
    Kill folder & "\nothing.txt"
    Debug.Print "Kill:"; Err.Number; Err.Description: Err.Clear
    Kill ""
    Debug.Print "Kill empty:"; Err.Number: Err.Clear
    MkDir folder
    Debug.Print "MkDir:"; Err.Number; Err.Description: Err.Clear
    RmDir folder
    Debug.Print "RmDir:"; Err.Number; Err.Description: Err.Clear
    Name folder & "\nothing.txt" As folder & "\else.txt"
    Debug.Print "Name:"; Err.Number; Err.Description: Err.Clear
    FileCopy folder & "\nothing.txt", folder & "\else.txt"
    Debug.Print "FileCopy source:"; Err.Number; Err.Description: Err.Clear
    FileCopy folder & "\a.txt", folder & "\nofolder\else.txt"
    Debug.Print "FileCopy target:"; Err.Number; Err.Description: Err.Clear
    ChDir folder & "\nofolder"
    Debug.Print "ChDir:"; Err.Number; Err.Description: Err.Clear
    ChDir ""
    Debug.Print "ChDir empty:"; Err.Number: Err.Clear
    ChDrive "1"
    Debug.Print "ChDrive:"; Err.Number: Err.Clear
    Debug.Print CurDir("?")
    Debug.Print "CurDir:"; Err.Number; Err.Description: Err.Clear
    ' A letter of no drive (the test prefix has C: and Z: only).
    Debug.Print CurDir("Q")
    Debug.Print "CurDir Q:"; Err.Number: Err.Clear
    Debug.Print FileLen(folder & "\nothing.txt")
    Debug.Print "FileLen:"; Err.Number: Err.Clear
    Debug.Print FileDateTime(folder & "\nothing.txt")
    Debug.Print "FileDateTime:"; Err.Number: Err.Clear
    Debug.Print GetAttr(folder & "\nothing.txt")
    Debug.Print "GetAttr:"; Err.Number: Err.Clear
    SetAttr folder & "\nothing.txt", 0
    Debug.Print "SetAttr:"; Err.Number: Err.Clear
    On Error GoTo 0

    Kill folder & "\sub\moved.txt"
    RmDir folder & "\sub"
    Kill folder & "\a.txt"
    Kill folder & "\b.txt"
    Kill folder & "\c.dat"
    RmDir folder
    Debug.Print "[" & Dir(folder, vbDirectory) & "]"
End Sub
