' Stream numbers and the errors of opening, using and closing streams.
Sub Main
    Dim folder As String, f As String
    folder = Environ("TEMP") & "\bbstreams"
    On Error Resume Next
    MkDir folder
    On Error GoTo 0
    f = folder & "\a.txt"
    Debug.Print "FreeFile:"; FreeFile
    Open f For Output As #FreeFile
    Debug.Print "next FreeFile:"; FreeFile
    Close #256
    Debug.Print "after Close:"; FreeFile
    On Error Resume Next
    Open f For Output As #512
    Debug.Print "512:"; Err.Number; Err.Description
    Err.Clear
    Open f For Random As #1 Len = 0
    Debug.Print "Len=0:"; Err.Number; Err.Description
    Err.Clear
    Open f For Output As #1
    Open f For Append As #1
    Debug.Print "open twice:"; Err.Number; Err.Description
    Err.Clear
    Close #1
    Open folder & "\missing.txt" For Input As #2
    Debug.Print "missing:"; Err.Number; Err.Description
    Err.Clear
    Print #2, "x"
    Debug.Print "Print # closed:"; Err.Number; Err.Description
    Err.Clear
    Debug.Print EOF(2)
    Debug.Print "EOF closed:"; Err.Number
    Err.Clear
    Close #2
    Debug.Print "Close closed:"; Err.Number
    Err.Clear
    Dim s As String
    Line Input #3, s
    Debug.Print "Line Input closed:"; Err.Number
    Err.Clear
    Debug.Print LOF(3)
    Debug.Print "LOF closed:"; Err.Number
    Err.Clear
    On Error GoTo 0
    Kill f
    RmDir folder
    Debug.Print "Dir after cleanup: [" & Dir(folder, vbDirectory) & "]"
End Sub
