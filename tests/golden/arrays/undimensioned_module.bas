' Module-level dynamic arrays (Dim, Private, Public) start as arrays of their kind without storage
Dim plain() As Long
Private hidden() As String
Public shared() As Double
Dim anything()

Sub Main
    Debug.Print TypeName(plain); VarType(plain); IsArray(plain)
    Debug.Print TypeName(hidden); VarType(hidden); IsArray(hidden)
    Debug.Print TypeName(shared); VarType(shared); IsArray(shared)
    Debug.Print TypeName(anything); VarType(anything); IsArray(anything)
    ReDim plain(2)
    plain(2) = 5
    Debug.Print TypeName(plain); UBound(plain); plain(2)
    Debug.Print "end"
End Sub
