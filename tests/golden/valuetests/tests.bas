' IsNumeric, IsDate, IsNull, IsEmpty, IsArray, IsObject, IsError and VarType.
Sub Main
    Dim v, s As String
    Debug.Print IsNumeric("12"); IsNumeric("&H10"); IsNumeric("abc"); IsNumeric(v); IsNumeric(Null)
    Debug.Print IsDate("2000-01-31"); IsDate("abc"); IsDate(5)
    Debug.Print IsNull(Null); IsNull(v); IsEmpty(v); IsEmpty(s); IsArray(Array()); IsArray(s)
    Debug.Print IsObject(Nothing); IsObject(s); IsError(CVErr(1)); IsError(1)
    Debug.Print VarType(v); VarType(Null); VarType(s); VarType(1.5); VarType(Array(1)); VarType(Split("a")); VarType(Nothing)
    Debug.Print "done"
End Sub
