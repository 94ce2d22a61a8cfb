'#Uses "lib/Hoard.cls"
' An object whose variables cannot all be made is not made: New raises the error, which can be trapped.
Sub Main
    Dim h As Hoard
    On Error Resume Next
    Set h = New Hoard
    Debug.Print Err.Number; Err.Description; h Is Nothing
    On Error GoTo 0
    Set h = New Hoard
    Debug.Print "never"
End Sub
