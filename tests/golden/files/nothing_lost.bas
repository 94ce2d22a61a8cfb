' A failing statement leaves the file as it was; Close and Reset; a file written by one stream is read
' at once through another.
Sub Main
    Dim folder As String, f As String, s As String, n As Integer
    folder = Environ("TEMP") & "\bblost"
    On Error Resume Next
    MkDir folder
    On Error GoTo 0
    f = folder & "\r.dat"
    If Dir(f) <> "" Then Kill f

    Open f For Random As #1 Len = 6
    s = "abcd"
    Put #1, 1, s
    s = "longer than six"
    On Error Resume Next
    Put #1, 2, s
    Debug.Print "too long:"; Err.Number; "LOF"; LOF(1)
    Err.Clear
    Dim v
    v = CVErr(5)
    Set v = Nothing
    Put #1, 2, v
    Debug.Print "object:"; Err.Number; "LOF"; LOF(1)
    Err.Clear
    On Error GoTo 0
    Close #1
    Debug.Print "FileLen"; FileLen(f)

    ' What Print # wrote is in the file before Close.
    Open f For Output As #1
    Print #1, "kept"
    Open f For Input As #2
    Line Input #2, s
    Debug.Print s
    Close #2, #1

    ' Reset closes every stream.
    Open f For Append As #3
    Open f For Input As #4
    n = FreeFile
    Open f For Input As #n
    Reset
    Debug.Print "after Reset:"; FreeFile
    On Error Resume Next
    Print #3, "x"
    Debug.Print "stream 3:"; Err.Number
    Err.Clear
    On Error GoTo 0
    Kill f
    RmDir folder
End Sub
