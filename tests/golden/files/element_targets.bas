' Input #, Line Input #, Get and Put read into and write from array elements, record fields, elements
' of arrays inside records and fields of records in arrays, as they do with whole variables.
Type Item
    name As String * 6
    count As Integer
    tags(1 To 2) As Long
End Type

Type Shelf
    title As String
    items(1 To 3) As Item
End Type

Sub Main
    Dim folder As String, f As String, i As Integer
    folder = Environ("TEMP") & "\bbtargets"
    On Error Resume Next
    MkDir folder
    On Error GoTo 0
    f = folder & "\t.txt"

    ' Text fields into elements and fields; the index is taken before the field is read.
    Open f For Output As #1
    Write #1, 10, 20, "thirty"
    Print #1, "whole line, with a comma"
    Write #1, 7, "bolt", 3.5
    Close #1
    Dim a(1 To 3) As Integer, words$(2), v(1) As Variant
    Dim r As Item, s As Shelf, items(1 To 2) As Item
    Open f For Input As #1
    i = 1
    Input #1, a(i), a(i + 1), words(0)
    Line Input #1, s.title
    Input #1, s.items(2).count, r.name, v(1)
    Close #1
    Debug.Print a(1); a(2); a(3); "["; words(0); "]"
    Debug.Print "["; s.title; "]"
    Debug.Print s.items(2).count; "["; r.name; "]"; v(1); TypeName(v(1))

    ' Binary Put from elements and fields, read back by Get into other elements and fields.
    f = folder & "\t.dat"
    If Dir(f) <> "" Then Kill f
    r.count = 513
    r.tags(2) = 70000
    items(2).name = "nut"
    a(3) = -2
    Open f For Binary As #2
    Put #2, , r.count
    Put #2, , r.tags(2)
    Put #2, , items(2).name
    Put #2, , a(3)
    Put #2, , s.items(2).count
    Seek #2, 1
    Dim back(1 To 5) As Long
    Get #2, , s.items(1).count
    Get #2, , back(2)
    Get #2, , items(1).name
    Get #2, 13, s.items(3).tags(1)
    Close #2
    Debug.Print s.items(1).count; back(2); "["; items(1).name; "]"; s.items(3).tags(1)
    Debug.Print "LOF"; FileLen(f)

    ' Random records addressed by number into and out of fields of records in arrays.
    Kill f
    Open f For Random As #3 Len = 4
    For i = 1 To 3
        s.items(i).tags(1) = i * 100
        Put #3, i, s.items(i).tags(1)
    Next
    For i = 3 To 1 Step -1
        Get #3, 4 - i, items(1).tags(2)
        Debug.Print items(1).tags(2);
    Next
    Debug.Print
    Close #3
    Kill f
    Open f For Random As #3 Len = 20

    ' Whole records as elements of arrays and as records inside records, where they live.
    items(2).name = "washer": items(2).count = 9: items(2).tags(1) = 1: items(2).tags(2) = 2
    s.items(1) = items(2)
    s.items(1).count = 12
    Put #3, 2, items(2)
    Put #3, 1, s.items(1)
    Get #3, 2, s.items(3)
    Get #3, 1, items(1)
    Debug.Print "["; s.items(3).name; "]"; s.items(3).count; s.items(3).tags(2); items(1).count
    Close #3
    Debug.Print "LOF"; FileLen(f)

    ' A failing read leaves the element or field as it was.
    Open f For Output As #4
    Print #4, "5"
    Close #4
    Open f For Input As #4
    a(1) = 111: a(2) = 222: r.count = 333
    On Error Resume Next
    Input #4, a(1), a(2)
    Debug.Print "past the end:"; Err.Number; a(1); a(2)
    Err.Clear
    Line Input #4, r.name
    Debug.Print "no line:"; Err.Number; "["; r.name; "]"
    Err.Clear
    Close #4
    Open f For Binary As #4
    Get #4, 100, r.count
    Debug.Print "Get past the end:"; Err.Number; r.count
    Err.Clear
    Close #4
    Open f For Input As #4
    Get #4, , r.count
    Debug.Print "Get from text:"; Err.Number; r.count
    Err.Clear
    Input #4, a(7)
    Debug.Print "bad index:"; Err.Number; a(1); a(2); a(3)
    Err.Clear
    On Error GoTo 0
    Close #4
    Kill f
    Kill folder & "\t.txt"
    RmDir folder
End Sub
