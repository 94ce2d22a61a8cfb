' A single-line If over Variants whose two parts read the same Variant: after the Variant changes kind
' (a Long divided into a Double), each part's read checks the kind it finds, whichever part runs.
Sub Main
    Dim i, a, b
    a = 100000
    b = 0
    For i = 1 To 16
        If i Mod 2 = 0 Then a = a + 1 Else b = a
        If i = 5 Then a = a / 4
        Debug.Print i; a; b
    Next i
End Sub
