' An End inside a class initializer, which runs nested in the statement that makes the object, cannot end
' the run from there: it raises "Invalid instruction.", which the calling code can trap
'#Uses "lib/Ender.cls"

Sub Main
    Dim e As Ender
    On Error Resume Next
    Set e = New Ender
    Debug.Print Err.Number; Err.Description; e Is Nothing
    On Error GoTo 0
    Debug.Print "end"
End Sub
