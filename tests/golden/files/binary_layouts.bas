' The byte layouts of Put for every kind, read back byte by byte and with Get; Random records, LOF, Loc
' and Seek.
Type Pair
    a As Integer
    s As String
    f As String * 3
    v As Variant
End Type

Function Bytes(f As String) As String
    Dim n As Integer, b As Byte, i As Long, s As String
    n = FreeFile
    Open f For Binary Access Read As #n
    For i = 1 To LOF(n)
        Get #n, i, b
        s = s & " " & Hex(b)
    Next
    Close #n
    Bytes = Mid(s, 2)
End Function

Sub Fresh(f As String)
    If Dir(f) <> "" Then Kill f
End Sub

Sub Main
    Dim folder As String, f As String
    folder = Environ("TEMP") & "\bblayout"
    On Error Resume Next
    MkDir folder
    On Error GoTo 0
    f = folder & "\b.bin"

    Dim i As Integer, l As Long, d As Double, c As Currency, bo As Boolean, by As Byte, sg As Single
    i = -2: l = 65536 + 2: d = 1.5: c = 1: bo = True: by = 200: sg = 2
    Fresh f
    Open f For Binary As #1
    Put #1, , i
    Put #1, , l
    Put #1, , d
    Put #1, , c
    Put #1, , bo
    Put #1, , by
    Put #1, , sg
    Debug.Print "Loc"; Loc(1); "Seek"; Seek(1); "LOF"; LOF(1)
    Close #1
    Debug.Print Bytes(f)

    Dim s As String, fx As String * 4, v
    Fresh f
    s = "ab": fx = "xy"
    Open f For Binary As #1
    Put #1, , s
    Put #1, , fx
    v = "cd": Put #1, , v
    v = 7: Put #1, , v
    v = Null: Put #1, , v
    v = Empty: Put #1, , v
    Close #1
    Debug.Print Bytes(f)
    Open f For Binary As #1
    s = "  ": Get #1, 1, s
    Get #1, , fx
    Dim w1, w2, w3, w4
    Get #1, , w1
    Get #1, , w2
    Get #1, , w3
    Get #1, , w4
    Debug.Print s; fx; w1; TypeName(w2); w2; IsNull(w3); IsEmpty(w4)
    Close #1

    ' Random: strings carry their count; a dynamic array its header; each Put one record.
    Dim a() As Integer, r As Pair, back() As Integer, rb As Pair
    ReDim a(1 To 2)
    a(1) = 3: a(2) = 4
    Fresh f
    Open f For Random As #1 Len = 20
    s = "abc"
    Put #1, 1, s
    Put #1, 2, a
    r.a = 9: r.s = "z": r.f = "pq": r.v = 1.5
    Put #1, 3, r
    Debug.Print "Loc"; Loc(1); "Seek"; Seek(1); "LOF"; LOF(1)
    Seek #1, 2
    Get #1, , back
    Debug.Print LBound(back); UBound(back); back(1); back(2)
    Get #1, 3, rb
    Debug.Print rb.a; rb.s; "[" & rb.f & "]"; rb.v
    Get #1, 1, s
    Debug.Print s
    s = String(30, "x")
    On Error Resume Next
    Put #1, 4, s
    Debug.Print "over Len:"; Err.Number; Err.Description; " LOF"; LOF(1)
    Err.Clear
    Debug.Print "FileAttr"; FileAttr(1, 1); FileAttr(1, 2) <> 0
    Debug.Print FileAttr(1, 3)
    Debug.Print "FileAttr 3:"; Err.Number
    Err.Clear
    Line Input #1, s
    Debug.Print "Line Input on Random:"; Err.Number
    Err.Clear
    ' Past the last record nothing is read and the variable keeps its value.
    i = 77
    Get #1, 9, i
    Debug.Print "Get past the end:"; Err.Number; i; Seek(1)
    Err.Clear
    On Error GoTo 0
    Close #1
    Debug.Print Bytes(f)

    ' Sequential Loc counts 128-byte blocks.
    Open f For Output As #1
    Print #1, String(298, "x")
    Debug.Print "sequential Loc"; Loc(1); "Seek"; Seek(1); "FileAttr"; FileAttr(1, 1)
    Close #1
    Open f For Append As #1
    Debug.Print "Append FileAttr"; FileAttr(1, 1); "Seek"; Seek(1)
    On Error Resume Next
    Put #1, , i
    Debug.Print "Put on Append:"; Err.Number
    On Error GoTo 0
    Close #1

    ' A locked record refuses a lock through another stream until it is unlocked.
    Open f For Binary As #1
    Open f For Binary As #2
    Lock #1, 1 To 10
    On Error Resume Next
    Lock #2, 5
    Debug.Print "second lock:"; Err.Number; Err.Description
    Err.Clear
    Unlock #1, 1 To 10
    Lock #2, 5
    Debug.Print "after Unlock:"; Err.Number
    Unlock #2, 5
    On Error GoTo 0
    Close
    Kill f
    RmDir folder
End Sub
