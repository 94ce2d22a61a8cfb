' An array field of a record starts without storage, and Erase gives it back that state
Type Bag
    Count As Integer
    Items() As Integer
    Names() As String
End Type

Sub Main
    Dim b As Bag
    Debug.Print TypeName(b.Items); VarType(b.Items); IsArray(b.Items)
    Debug.Print TypeName(b.Names); VarType(b.Names)
    On Error Resume Next
    Debug.Print UBound(b.Items)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    ReDim b.Items(2)
    b.Items(2) = 7
    Debug.Print TypeName(b.Items); UBound(b.Items); b.Items(2)
    Erase b.Items
    Debug.Print TypeName(b.Items); VarType(b.Items)
    Dim v As Variant
    v = b.Names
    Debug.Print TypeName(v); IsArray(v)
    Dim none() As Integer
    ReDim b.Items(1)
    b.Items = none
    Debug.Print Err.Number; TypeName(b.Items)
    Debug.Print "end"
End Sub
