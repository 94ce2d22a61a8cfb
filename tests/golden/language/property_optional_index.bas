' A Property Let may take Optional index parameters, like its Get, before its value parameter; an
' assignment that leaves the index out uses the default.
Dim stored(3) As Integer

Property Get Cell(Optional i As Integer = 1) As Integer
    Cell = stored(i)
End Property

Property Let Cell(Optional i As Integer = 1, value As Integer)
    stored(i) = value
End Property

Property Get Tag(Optional key) As String
    Tag = "missing " & IsMissing(key)
End Property

Property Let Tag(Optional key, text As String)
    Debug.Print "let"; IsMissing(key); text
End Property

Sub Main
    Cell = 5
    Cell(2) = 7
    Debug.Print Cell; Cell(2); stored(1); stored(2); stored(3)
    Tag = "a"
    Tag("k") = "b"
    Debug.Print Tag; Tag(1)
    Debug.Print "end"
End Sub
