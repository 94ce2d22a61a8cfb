' Fields and elements of records passed to by-reference parameters: the procedure works on the place
' itself as far as the caller can see (each change is back in the record when the call returns).
Type Inner
    x As Long
End Type

Type Holder
    count As Long
    small As Integer
    name As String
    code As String * 4
    anything As Variant
    inner As Inner
    fixed(3) As Long
    values() As Long
End Type

Dim g As Holder
Dim gs() As Holder

Sub Bump(x As Long)
    x = x + 1
End Sub

Sub BumpAny(x As Variant)
    x = x + 1
End Sub

Sub Shout(s As String)
    s = s & "!"
End Sub

Sub Fill(a() As Long)
    a(1) = 7
End Sub

Sub Grow(a() As Long)
    ReDim a(3)
    a(2) = 42
End Sub

Sub Keep(ByVal x As Long)
    x = 100
End Sub

Function NextOf(x As Long) As Long
    x = x * 2
    NextOf = x + 1
End Function

Sub ResizeWhileHeld(x As Long)
    On Error Resume Next
    ReDim Preserve gs(5)
    Debug.Print "ReDim while an element's field is passed: "; Err.Number; " "; Err.Description
    x = 9
End Sub

Sub ReplaceRecord(x As Long)
    Dim other As Holder
    other.count = 50
    g = other
    x = x + 5
End Sub

Sub Main
    Dim h As Holder
    Bump h.count
    Bump h.count
    Debug.Print "count "; h.count
    Bump h.small
    Debug.Print "Integer field to a Long parameter, unchanged: "; h.small
    Dim fixedText As String * 4
    fixedText = "ab"
    Shout fixedText
    Debug.Print "fixed-length variable unchanged: "; fixedText
    Shout h.name
    h.code = "ab"
    Shout h.code
    Debug.Print "String field "; h.name; ", fixed-length field unchanged: "; h.code
    h.anything = 1
    BumpAny h.anything
    Debug.Print "Variant field "; h.anything
    Bump h.inner.x
    Debug.Print "nested "; h.inner.x
    Bump h.fixed(2)
    Fill h.fixed
    Debug.Print "fixed array "; h.fixed(1); " "; h.fixed(2)
    Grow h.values
    Debug.Print "dynamic array "; UBound(h.values); " "; h.values(2)
    Bump h.values(2)
    Debug.Print "its element "; h.values(2)
    Keep h.count
    Bump (h.count)
    Debug.Print "by value and parenthesised, unchanged: "; h.count
    Debug.Print "function "; NextOf(h.count); " "; h.count
    With h
        Bump .count
        Bump .inner.x
    End With
    Debug.Print "With "; h.count; " "; h.inner.x

    ReDim gs(2)
    Bump gs(1).count
    Bump gs(1).fixed(3)
    Debug.Print "array of records "; gs(1).count; " "; gs(1).fixed(3)
    ResizeWhileHeld gs(2).count
    Debug.Print "after "; UBound(gs); " "; gs(2).count

    Dim i As Long, t As Long, p As Holder
    For i = 1 To 1000
        t = t + NextOf(p.inner.x) Mod 7 + NextOf(p.fixed(0)) Mod 5
        p.inner.x = i
    Next i
    Debug.Print "in a loop "; t; " "; p.inner.x; " "; p.fixed(0)

    g.count = 1
    ReplaceRecord g.count
    ' The parameter works on a copy that goes back when the call returns, over the record's new value.
    Debug.Print "record assigned during the call "; g.count
End Sub
