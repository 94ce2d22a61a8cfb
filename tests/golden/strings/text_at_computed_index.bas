' Strings read and stored at an index computed by an expression: an element of a String array, a
' field of an array of records, and Len of either. Each index is evaluated once, an index outside the
' bounds raises 9 with nothing stored, and an overflow in the index raises 6.
Type Person
    Name As String
    City As String
End Type

Dim calls As Long
Dim shared(2) As String

Function Pick(ByVal i As Long) As Long
    calls = calls + 1
    Pick = i
End Function

Sub Main
    Dim names(4) As String, people(4) As Person, i As Long, n As Integer, s As String, t As String
    Dim v As Variant, total As Long, big As Long
    names(0) = "alpha": names(1) = "beta": names(2) = "gamma": names(3) = "delta": names(4) = "epsilon"
    For i = 0 To 4
        people(i).City = UCase(names(4 - i))
    Next i
    ' Lengths that shrink and grow, the block reused or replaced.
    For i = 1 To 7
        s = names(i Mod 5)
        t = people((i + 2) Mod 5).City
        people((i + 1) Mod 5).Name = s & "!"
        total = total + Len(names((i * 3) Mod 5)) + Len(people(i Mod 5).Name)
        Debug.Print s; " "; t; " "; total
    Next i
    For i = 0 To 4
        Debug.Print people(i).Name; "/";
    Next i
    Debug.Print
    ' An Integer index, a Variant holding the index, a constant index.
    n = 1
    s = names(n + 1)
    Debug.Print s
    v = 3
    s = names(v + 0)
    Debug.Print s
    s = names(2 * 2)
    Debug.Print s
    ' Into a Variant; out of a Variant array, whose element may hold a number (converted by the general
    ' store).
    Dim va(2)
    va(0) = "one": va(1) = 22: va(2) = "three"
    For i = 0 To 2
        v = names((i + 1) Mod 5)
        s = va((i + 2) Mod 3)
        Debug.Print v; " "; s; " "; Len(va((i + 1) Mod 3))
    Next i
    ' Comparisons of texts at computed indexes, on either side.
    Dim hits As Long, order As String
    For i = 0 To 9
        If names(i Mod 5) = "beta" Then hits = hits + 1
        If "delta" = names((i + 3) Mod 5) Then hits = hits + 10
        If names((i + 1) Mod 5) < names(i Mod 5) Then order = order & "<" Else order = order & ">"
        If people((i + 1) Mod 5).City >= people(i Mod 5).City Then order = order & "+"
    Next i
    Debug.Print hits; " "; order
    ' Select Case over texts at computed indexes.
    order = ""
    For i = 0 To 6
        Select Case names((i + 2) Mod 5)
            Case "alpha"
                order = order & "a"
            Case "beta", "gamma"
                order = order & "b"
            Case Else
                order = order & "-"
        End Select
        Select Case people((i + 1) Mod 5).City
            Case "DELTA"
                order = order & "D"
            Case Else
                order = order & "."
        End Select
    Next i
    Debug.Print order
    ' An index with a call: the call runs once per statement.
    s = names(Pick(2))
    people(Pick(0)).Name = names(Pick(1))
    Debug.Print s; " "; people(0).Name; " calls "; calls
    ' A module's array; an index the loop cannot compute itself (the call in it still runs once).
    shared(0) = "x": shared(1) = "yy": shared(2) = "zzz"
    For i = 0 To 2
        s = shared((i + 1) Mod 3)
        Debug.Print s; Len(shared((i + 2) Mod 3));
    Next i
    Debug.Print
    s = names(Pick(1) + Asc("a") - 97)
    people(Pick(2) + Asc("b") - 98).Name = names(Pick(3))
    total = Len(names(Pick(4) + Asc("a") - 97))
    Debug.Print s; " "; people(2).Name; " "; total; " calls "; calls
    ' Outside the bounds: error 9, the variable and the field keep their texts.
    On Error Resume Next
    s = names(i + 10)
    Debug.Print Err.Number; " "; s
    Err.Clear
    people(i - 10).Name = "lost"
    Debug.Print Err.Number; " "; people(0).Name
    Err.Clear
    big = 2147483647
    s = names(big + 1)
    Debug.Print Err.Number; " "; s
    Err.Clear
    total = Len(names(i * 100))
    Debug.Print Err.Number; " "; total
    Err.Clear
    hits = 0
    If names(i + 10) = "beta" Then hits = 1 Else hits = 2
    Debug.Print Err.Number; " "; hits
    Err.Clear
    If "beta" <> names(big + 1) Then hits = 3
    Debug.Print Err.Number; " "; hits
    Err.Clear
    hits = 0
    Select Case names(i - 50)
        Case "beta"
            hits = 1
        Case Else
            hits = 2
    End Select
    Debug.Print Err.Number; " "; hits
End Sub
