' A local declared with a type name that is no type, record, enumeration, class or referenced type is
' refused, as a module-level one is, instead of becoming an object variable.
Sub Main
    Dim n As Integer
    Dim x As Intger
    Debug.Print TypeName(x)
End Sub
