' Input(count, #n): a count beyond the bytes left raises "Attempt to read past end-of-file." at once and
' takes nothing, however large the count (a count near 2^31 asks for no buffer of that size).
Sub Main
    Dim f As String, s As String
    f = Environ("TEMP") & "\bbinputcount.txt"
    Open f For Output As #1
    Print #1, "hello"
    Close #1
    Open f For Input As #1
    On Error Resume Next
    s = Input(2000000000, #1)
    Debug.Print "2000000000:"; Err.Number; Err.Description
    Err.Clear
    s = Input(2147483647, #1)
    Debug.Print "2147483647:"; Err.Number
    Err.Clear
    s = Input(8, #1)
    Debug.Print "8 of 7:"; Err.Number
    Err.Clear
    On Error GoTo 0
    Debug.Print Input(3, #1); Seek(1); Input(4, #1) = "lo" & vbCrLf; EOF(1)
    Close #1
    Open f For Binary As #1
    On Error Resume Next
    s = Input(1000000000, #1)
    Debug.Print "Binary 1000000000:"; Err.Number; Seek(1)
    On Error GoTo 0
    Debug.Print Input(7, #1) = "hello" & vbCrLf
    Close #1
    Kill f
End Sub
