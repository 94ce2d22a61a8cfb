'#Uses "lib/Counter.cls"
' Variants whose statements run in forms made for numbers come to hold an object or a string: the
' assignment that replaces it releases what it held (the terminator runs at that statement), whether
' the new value is a sum that may grow into a Long, a product, or a plain number.
Sub Main
    Dim i, n, v, w, total
    n = 1
    For i = 1 To 8
        v = n + i
        w = n * 3
        total = total + v + w
        If i = 4 Then
            Set v = New Counter
            v.Name = "in v"
            w = "a string in w"
        End If
        If i = 6 Then
            Set w = New Counter
            w.Name = "in w"
        End If
        Debug.Print i; "next"
    Next i
    Debug.Print total; TypeName(v); TypeName(w)
End Sub
