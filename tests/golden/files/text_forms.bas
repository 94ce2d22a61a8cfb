' The text forms of Print #, Write #, Input # and Line Input #, checked by reading the bytes back.
Function Bytes(f As String) As String
    Dim n As Integer, b As Byte, i As Long, s As String
    n = FreeFile
    Open f For Binary Access Read As #n
    For i = 1 To LOF(n)
        Get #n, i, b
        s = s & " " & b
    Next
    Close #n
    Bytes = Mid(s, 2)
End Function

Sub Main
    Dim folder As String, f As String
    folder = Environ("TEMP") & "\bbtext"
    On Error Resume Next
    MkDir folder
    On Error GoTo 0
    f = folder & "\t.txt"

    Open f For Output As #1
    Print #1, 1; -2; "x"
    Close #1
    Debug.Print Bytes(f)
    Open f For Output As #1
    Print #1, "a";
    Print #1,
    Close #1
    Debug.Print Bytes(f)

    Dim v1, v2, v3, v4, v5
    Open f For Output As #1
    Write #1, Null, True, #2001-02-03 04:05:06#, "say ""hi""", 2.5
    Close #1
    Open f For Input As #1
    Line Input #1, v1
    Close #1
    Debug.Print v1
    Open f For Input As #1
    Input #1, v1, v2, v3, v4, v5
    Close #1
    Debug.Print TypeName(v1); " "; TypeName(v2); " "; TypeName(v3); " "; TypeName(v4); " "; TypeName(v5)
    Debug.Print IsNull(v1); v2; v3 = #2001-02-03 04:05:06#; v4; v5

    ' Field rules: blanks around fields, unquoted strings lose trailing blanks, numbers end at a blank.
    Open f For Output As #1
    Print #1, "  abc  ,  12 ,,""q"",#ERROR 7#"
    Print #1, "x y"
    Close #1
    Dim s As String, n As Integer, e, q, r
    Open f For Input As #1
    Input #1, s, n, e, q, r
    Debug.Print "[" & s & "]"; n; IsEmpty(e); q; IsError(r); CLng(r)
    On Error Resume Next
    Input #1, n
    Debug.Print "number then text:"; Err.Number; Err.Description
    Err.Clear
    Input #1, s
    Input #1, s
    Debug.Print "past end:"; Err.Number; Err.Description
    Err.Clear
    Close #1
    Open f For Output As #1
    Print #1, """open"
    Close #1
    Open f For Input As #1
    Input #1, s
    Debug.Print "open quote:"; Err.Number
    Err.Clear
    Close #1
    Open f For Input As #1
    Write #1, 1
    Debug.Print "Write # on Input:"; Err.Number; Err.Description
    Err.Clear
    Close #1
    On Error GoTo 0

    ' Ctrl-Z ends sequential text.
    Open f For Output As #1
    Print #1, "one"
    Print #1, "two" & Chr(26) & "hidden"
    Close #1
    Open f For Input As #1
    Do While Not EOF(1)
        Line Input #1, s
        Debug.Print "[" & s & "]"
    Loop
    Close #1
    ' Input() stops at the mark too; in a Binary stream the mark is data.
    On Error Resume Next
    Open f For Input As #1
    Debug.Print "Input(5):"; Len(Input(5, #1))
    s = Input(4, #1)
    Debug.Print "Input(4) over the mark:"; Err.Number; Err.Description
    Err.Clear
    s = Input(3, #1)
    Debug.Print "[" & s & "]"; Err.Number; EOF(1)
    s = Input(1, #1)
    Debug.Print "Input(1) at the mark:"; Err.Number
    Err.Clear
    Close #1
    On Error GoTo 0
    Open f For Binary As #1
    s = Input(9, #1)
    Debug.Print "Binary Input(9):"; Asc(Mid(s, 9, 1)); Len(s)
    Debug.Print "Binary EOF at the end:"; EOF(1); LOF(1)
    Close #1
    Kill f
    RmDir folder
End Sub
