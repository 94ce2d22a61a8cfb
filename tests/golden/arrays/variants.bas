' Arrays held in Variants: copies are independent; ReDim of a Variant; For Each over a Variant
Sub Main
    Dim a() As Integer
    ReDim a(2)
    a(0) = 10: a(1) = 20: a(2) = 30
    Dim v As Variant
    v = a
    a(0) = -1
    v(1) = 21
    Debug.Print v(0); v(1); a(1); UBound(v); LBound(v)
    Dim back() As Integer
    back = v
    v(2) = 0
    Debug.Print back(2); back(1)
    Dim w As Variant
    ReDim w(1 To 2, 1 To 2) As String
    w(2, 2) = "d"
    Debug.Print w(1, 1); w(2, 2); UBound(w, 2)
    ReDim w(3)
    w(3) = 3.5
    Dim x As Variant
    For Each x In w
        Debug.Print x;
    Next
    Debug.Print
    Dim u As Variant
    u = w
    ReDim Preserve u(4)
    Debug.Print UBound(u); UBound(w)
    Debug.Print "end"
End Sub
