' String comparisons in conditions and Select Case over strings, run many times in loops so that the
' procedure's fast form runs them: locals, elements, module variables, ByRef parameters and Variants
' (holding strings, numbers, Empty or Null, which take the general way), empty strings, strings that
' differ only in length or in their last character, Case lists, ranges and Is, Case Else, and a
' selector that changes kind inside the loop.
Dim moduleText As String

Function Kind(ByRef s As String) As Long
    Select Case s
    Case "alpha"
        Kind = 1
    Case "beta", "gamma"
        Kind = 2
    Case "a" To "c"
        Kind = 3
    Case Is > "x"
        Kind = 4
    Case ""
        Kind = 5
    Case Else
        Kind = 6
    End Select
End Function

Function VariantKind(v As Variant) As String
    Select Case v
    Case "one"
        VariantKind = "text one"
    Case "2"
        VariantKind = "text two"
    Case Else
        VariantKind = "other " & TypeName(v)
    End Select
End Function

Sub Main
    Dim words(7) As String, i As Long, total As Long, s As String
    words(0) = "alpha": words(1) = "beta": words(2) = "gamma": words(3) = "apple"
    words(4) = "zeta": words(5) = "": words(6) = "alphA": words(7) = "alph"
    For i = 0 To 7
        total = total * 7 + Kind(words(i))
    Next i
    Debug.Print "kinds "; total

    ' Comparisons of every kind over locals, elements and a module variable.
    Dim eq As Long, ne As Long, lt As Long, le As Long, gt As Long, ge As Long
    moduleText = "beta"
    For i = 0 To 799
        s = words(i Mod 8)
        If s = moduleText Then eq = eq + 1
        If words(i Mod 8) <> "alpha" Then ne = ne + 1
        If s < "b" Then lt = lt + 1
        If s <= "beta" Then
            le = le + 1
        ElseIf s > "zz" Then
            le = le - 1000
        End If
        If "gamma" > s Then gt = gt + 1
        If s >= "" Then ge = ge + 1
    Next i
    Debug.Print eq; ne; lt; le; gt; ge

    ' A Do loop whose condition compares strings.
    Dim built As String
    Do While built <> "xxxxx"
        built = built & "x"
    Loop
    Debug.Print built

    ' Variants: a string compared in place; a number, Empty and Null take the general way.
    Dim v As Variant, n As Long, count As Long
    For i = 1 To 40
        Select Case i Mod 4
        Case 0: v = "one"
        Case 1: v = 2
        Case 2: v = "2"
        Case 3: v = Empty
        End Select
        If v = "2" Then n = n + 1
        count = count + Len(VariantKind(v))
    Next i
    Debug.Print n; count
    v = Null
    If v = "x" Then Debug.Print "null equal" Else Debug.Print "null not equal"
    Debug.Print VariantKind(v)
    Debug.Print VariantKind(1.5); VariantKind("one")
End Sub
