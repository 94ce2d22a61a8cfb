' Statements over Variant locals run in loops (so they get forms for the kinds held): a Variant read
' before a call in the same statement keeps the value it had when it was read, even when the call changes
' it through a reference; reads after a kind change see the new kind.
Function Bump(ByRef v) As Long
    v = v * 2.5
    Bump = 1
End Function

Function Twice(ByVal k As Long) As Long
    Twice = k * 2
End Function

Sub Main
    Dim i, n, x, y, total
    n = 10
    total = 0
    For i = 1 To 6
        x = n + Bump(n)
        y = x * 2 + n
        total = total + x - y / 4
        Debug.Print i; x; y; n; TypeName(n)
    Next i
    ' A Long that becomes a Double in the middle of a loop, read twice in one statement.
    n = 2147483000
    For i = 1 To 4
        x = n - n / 4
        n = n + 400
        Debug.Print x; TypeName(x); n; TypeName(n)
    Next i
    ' A Double read in place and stored into another Variant, then both changed.
    x = 0.5
    For i = 1 To 3
        y = x * x + x
        x = y
        Debug.Print y; TypeName(y)
    Next i
    ' A statement with a call of typed arguments next to Variant reads.
    n = 7
    For i = 1 To 3
        x = n * 3 + Twice(i) - n
        n = n + x
        Debug.Print x; n
    Next i
    Debug.Print total
End Sub
