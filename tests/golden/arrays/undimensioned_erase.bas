' Erase gives a dynamic array back its state without storage, and may be repeated; an Erased Variant
' variable is Empty
Sub Main
    Dim d() As Integer
    Erase d
    Debug.Print TypeName(d); VarType(d); IsArray(d)
    ReDim d(3)
    d(3) = 3
    Erase d
    Debug.Print TypeName(d); VarType(d); IsArray(d)
    Dim v()
    ReDim v(1)
    Erase v
    Debug.Print TypeName(v); VarType(v)
    Dim s() As String
    ReDim s(2)
    Erase s, d
    Debug.Print TypeName(s); TypeName(d)
    Dim w As Variant
    ReDim w(2)
    Erase w
    Debug.Print TypeName(w)
    On Error Resume Next
    Debug.Print s(0)
    Debug.Print Err.Number; Err.Description
    Debug.Print "end"
End Sub
