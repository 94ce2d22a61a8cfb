' An array without storage passed to a by-reference array parameter: the callee sees it as such, and
' what the callee's ReDim makes reaches the caller
Sub Fill(a() As Integer, n As Integer)
    Debug.Print "callee: "; TypeName(a); VarType(a); IsArray(a)
    ReDim a(1 To n)
    Dim i As Integer
    For i = 1 To n
        a(i) = i * 10
    Next
End Sub

Sub Look(a() As Integer)
    On Error Resume Next
    Debug.Print UBound(a)
    Debug.Print "look: "; Err.Number; Err.Description
End Sub

Dim kept() As Integer

Sub Main
    Dim d() As Integer
    Look d
    Fill d, 3
    Debug.Print TypeName(d); LBound(d); UBound(d); d(3)
    Fill kept, 2
    Debug.Print TypeName(kept); UBound(kept); kept(2)
    Debug.Print "end"
End Sub
