' Strings compared, selected on and copied where they are stored: comparisons between variables,
' constants, array elements and Mid parts; Select Case over strings with lists, ranges, Is items and
' Else; assignments of strings of changing lengths, of a string to itself and to part of itself, through
' ByRef parameters, into Variants and fixed-length strings; and values that are not strings taking the
' general way (a Variant holding a number or Null, an index outside the bounds).
Dim shared As String

Function Kind(ByVal s As String) As String
    Select Case s
        Case "alpha"
            Kind = "first"
        Case "beta", "gamma"
            Kind = "second or third"
        Case "m" To "r"
            Kind = "m to r"
        Case Is < "b"
            Kind = "before b"
        Case Is >= "zz"
            Kind = "after zz"
        Case Else
            Kind = "other"
    End Select
End Function

Sub Replace(ByRef target As String, ByVal text As String)
    target = text
End Sub

Sub Main
    Dim names(4) As String, i As Long, s As String, t As String, v, w, f As String * 5
    names(0) = "alpha"
    names(1) = "beta"
    names(2) = "gamma"
    names(3) = "Beta"
    names(4) = ""
    ' Comparisons in place.
    For i = 0 To 4
        s = names(i)
        Debug.Print i; "["; s; "]"; s = "beta"; s <> "beta"; s < "beta"; s <= "beta"; s > "beta"; s >= "beta";
        Debug.Print names(i) = s; names(i) < "b"; Mid(s, 1, 2) = "al"; s = ""
        If s = "gamma" Then Debug.Print "gamma found" Else If s < "B" Then Debug.Print "before B"
        If names(i) = "Beta" Then
            Debug.Print "upper Beta"
        ElseIf names(i) > "alpha" Then
            Debug.Print "after alpha"
        Else
            Debug.Print "neither"
        End If
    Next i
    Debug.Print "ab" < "abc"; "abc" < "abd"; "a" > "B"; "" < "a"
    ' Select Case over strings.
    For i = 0 To 4
        Debug.Print Kind(names(i)); "|";
    Next i
    Debug.Print Kind("n"); "|"; Kind("zzz"); "|"; Kind("A"); "|"; Kind("x")
    For i = 0 To 5
        Select Case names(i Mod 5)
            Case "beta": Debug.Print "b";
            Case "alpha", "": Debug.Print "a or empty";
            Case Else: Debug.Print "-";
        End Select
    Next i
    Debug.Print
    ' A Variant selector holding a number, Null or a string against string items.
    For Each w In Array(5, "5", Null, "beta", 2.5)
        v = w
        Select Case v
            Case "5": Debug.Print "text five";
            Case "beta": Debug.Print "beta";
            Case Else: Debug.Print "else";
        End Select
        Debug.Print " "; v = "5"; " ";
    Next w
    Debug.Print
    ' Copies of changing lengths, from arrays and variables, into String and Variant variables.
    For i = 0 To 9
        s = names(i Mod 5)
        t = s
        v = names((i + 2) Mod 5)
        Debug.Print "["; s; "]["; t; "]["; v; "]"; Len(s); Len(t); TypeName(v)
    Next i
    t = "longer text than before"
    s = t
    t = "short"
    Debug.Print s; "|"; t
    ' A copy is a value: changing one leaves the other.
    s = "original"
    t = s
    Mid(t, 1, 3) = "XYZ"
    Debug.Print s; "|"; t
    ' A string assigned to itself and to part of itself.
    s = "abcdefgh"
    s = s
    Debug.Print s
    s = Mid(s, 3, 4)
    Debug.Print s
    s = "abcdefgh"
    s = Mid(s, 1, 3)
    Debug.Print s; Len(s)
    ' Through a ByRef parameter, into module-level and fixed-length strings.
    s = "before"
    Replace s, "after the call"
    Debug.Print s
    shared = names(1)
    shared = s
    Debug.Print shared
    f = names(0)
    Debug.Print "["; f; "]"
    f = "ab"
    Debug.Print "["; f; "]"; Len(f)
    s = f
    Debug.Print "["; s; "]"; Len(s)
    ' A Variant holding a number takes a string; an index outside the bounds raises.
    v = 12
    v = names(2)
    Debug.Print v; TypeName(v)
    On Error Resume Next
    s = names(7)
    Debug.Print Err.Number; "["; s; "]"
    If names(9) = "x" Then Debug.Print "never"
    Debug.Print Err.Number
End Sub
