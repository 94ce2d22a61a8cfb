' A dynamic array that is not dimensioned yet is an array of its element kind without storage:
' TypeName, VarType, IsArray and IsEmpty of every kind of local one
Function NothingYet() As Long()
End Function

Sub Show(name As String, value As Variant)
    Debug.Print name; ": "; TypeName(value); VarType(value); IsArray(value); IsEmpty(value)
End Sub

Sub Main
    Dim d() As Integer
    Dim l() As Long
    Dim s() As String
    Dim f() As String * 4
    Dim v()
    Dim b() As Byte
    Dim c() As Currency
    Dim t() As Date
    Dim o() As Object
    Dim k() As Boolean
    Dim m() As Decimal
    Static g() As Double
    Debug.Print TypeName(d); VarType(d); IsArray(d); IsEmpty(d)
    Show "Long", l
    Show "String", s
    Show "String * 4", f
    Show "Variant", v
    Show "Byte", b
    Show "Currency", c
    Show "Date", t
    Show "Object", o
    Show "Boolean", k
    Show "Decimal", m
    Show "Static Double", g
    Show "Function result", NothingYet()
    Debug.Print "end"
End Sub
