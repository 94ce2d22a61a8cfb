' LSet and RSet into fields of records: a String field keeps its length, a fixed-length field its size,
' an element of an array field or a field of a record in an array the same.
Type Inner
    Code As String * 4
End Type
Type Person
    Name As String * 6
    Note As String
    Tags(2) As String
    Box As Variant
    Inside As Inner
End Type

Sub Main
    Dim p As Person, people(1) As Person
    p.Note = "abcdef"
    LSet p.Note = "xy"
    Debug.Print "["; p.Note; "]"
    RSet p.Note = "xy"
    Debug.Print "["; p.Note; "]"
    LSet p.Name = "ab"
    Debug.Print "["; p.Name; "]"
    RSet p.Name = "longer than six"
    Debug.Print "["; p.Name; "]"
    p.Tags(1) = "....."
    RSet p.Tags(1) = 42
    Debug.Print "["; p.Tags(1); "]"
    p.Box = "12345"
    LSet p.Box = "z"
    Debug.Print "["; p.Box; "]"
    RSet p.Inside.Code = "q"
    Debug.Print "["; p.Inside.Code; "]"
    people(1).Note = "    "
    RSet people(1).Note = "ab"
    Debug.Print "["; people(1).Note; "]"
    ' A field that holds no string.
    On Error Resume Next
    p.Box = 5
    LSet p.Box = "z"
    Debug.Print Err.Number; "["; p.Box; "]"
End Sub
