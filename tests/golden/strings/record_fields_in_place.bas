' Strings copied to and from record fields and compared where they are stored: String, fixed-length
' String and Variant fields of records, of elements of arrays of records, of nested records and of
' records in arrays held by records, through With blocks, ByRef records and module-level records;
' fixed-length fields padded and cut; Variant fields holding numbers, Null or Empty, indexes
' outside the bounds and arrays not yet dimensioned taking the general way.
Type Inner
    Label As String * 6
    Note As Variant
End Type

Type Person
    Name As String
    City As String
    Code As String * 4
    Age As Long
    Tag As Variant
    Inside As Inner
    Parts() As Inner
End Type

Dim shared As Person
Dim crowd(2) As Person

Sub Rename(ByRef who As Person, ByVal text As String)
    who.Name = text
    who.Code = who.Name
    shared.City = who.Code
End Sub

Function Show(who As Person) As String
    Show = "[" & who.Name & "|" & who.City & "|" & who.Code & "|" & who.Inside.Label & "|" & who.Tag & "]"
End Function

Sub Main
    Dim people(3) As Person, rec As Person, s As String, t As Variant, f As String * 3, i As Long, k As Integer
    Dim names(3) As String
    names(0) = "ab"
    names(1) = "abcdefgh"
    names(2) = ""
    names(3) = "xyz"
    ' Copies into each kind of field and back, lengths growing and shrinking.
    For i = 0 To 3
        people(i).Name = names(i)
        people(i).City = people(i).Name
        people(i).Code = names(i)
        people(i).Inside.Label = people(i).Code
        people(i).Tag = names(3 - i)
        people(i).Inside.Note = names(i)
    Next i
    For k = 0 To 3
        s = people(k).Code
        t = people(k).Inside.Label
        f = people(k).Name
        Debug.Print Show(people(k)); " "; Len(s); Len(t); "["; f; "]"; TypeName(people(k).Tag)
    Next k
    For i = 3 To 0 Step -1
        people(i).Name = names(3 - i) & names(3 - i)
        s = people(i).Name
        people(i).Name = "q"
        Debug.Print "["; s; "|"; people(i).Name; "]"; Len(people(i).Name)
    Next i
    ' Comparisons and Select Case over fields, padded fixed-length fields included.
    For i = 0 To 3
        If people(i).Code = "ab  " Then Debug.Print i; "code is ab, padded"
        If people(i).Code = "ab" Then Debug.Print i; "code is ab, unpadded"
        If people(i).Inside.Label < people(i).City Then Debug.Print i; "label before city"
        If people(i).Tag >= "xyz" Then Debug.Print i; "tag from xyz on"
        Select Case people(i).City
            Case "ab"
                Debug.Print i; "city ab"
            Case "a" To "b"
                Debug.Print i; "city a to b"
            Case ""
                Debug.Print i; "city empty"
            Case Else
                Debug.Print i; "city other"
        End Select
    Next i
    ' A field to itself and to other fields of the same record.
    rec.Name = "hello world"
    rec.Name = rec.Name
    rec.City = rec.Name
    rec.Code = rec.City
    rec.Name = rec.Code
    rec.Inside.Label = rec.Inside.Label
    rec.Code = rec.Code
    rec.Tag = rec.Code
    Debug.Print Show(rec); TypeName(rec.Tag); Len(rec.Tag)
    ' Variant fields holding other kinds.
    rec.Tag = 42
    s = rec.Tag
    Debug.Print "["; s; "]"; TypeName(rec.Tag)
    rec.Tag = 1.5
    rec.Tag = names(1)
    Debug.Print TypeName(rec.Tag); " "; rec.Tag
    rec.Tag = Empty
    s = rec.Tag
    Debug.Print "["; s; "]"; TypeName(rec.Tag)
    rec.Tag = Null
    If rec.Tag = "x" Then Debug.Print "Null equals" Else Debug.Print "Null is not equal"
    rec.Tag = rec.Name
    Debug.Print TypeName(rec.Tag); " "; rec.Tag
    ' With blocks, ByRef records, module-level records and arrays of them.
    With people(2)
        .City = names(1)
        s = .City
        .Code = .City
        .Inside.Label = s
    End With
    Debug.Print s; " "; Show(people(2))
    Rename people(1), "renamed"
    Rename rec, "r"
    Debug.Print Show(people(1)); Show(rec); "["; shared.City; "]"
    For i = 0 To 2
        crowd(i).Name = names(i + 1)
        crowd((i + 1) Mod 3).City = crowd(i).Name
    Next i
    For i = 0 To 2
        Debug.Print Show(crowd(i));
    Next i
    Debug.Print
    ' Records in an array held by a record.
    ReDim rec.Parts(1 To 2)
    rec.Parts(1).Label = names(1)
    rec.Parts(2).Label = rec.Parts(1).Label
    rec.Parts(2).Note = rec.Parts(2).Label
    s = rec.Parts(2).Note
    Debug.Print "["; rec.Parts(1).Label; "|"; s; "]"
    ' Errors: indexes outside the bounds, an array not yet dimensioned, Null into a String.
    On Error Resume Next
    s = "kept"
    s = people(9).Name
    Debug.Print Err.Number; s
    Err.Clear
    people(-1).City = "x"
    Debug.Print Err.Number
    Err.Clear
    s = rec.Parts(3).Label
    Debug.Print Err.Number; s
    Err.Clear
    rec.Parts(0).Label = "x"
    Debug.Print Err.Number
    Err.Clear
    s = people(0).Parts(1).Label
    Debug.Print Err.Number; s
    Err.Clear
    people(0).Parts(1).Label = "x"
    Debug.Print Err.Number
    Err.Clear
    rec.Tag = Null
    s = rec.Tag
    Debug.Print Err.Number; s
    Err.Clear
    people(1).Inside.Note = Null
    people(0).Name = people(1).Inside.Note
    Debug.Print Err.Number; "["; people(0).Name; "]"
End Sub
