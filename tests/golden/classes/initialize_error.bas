'#Uses "lib/Faulty.cls"
' An error that Class_Initialize does not trap ends the new instance (its Class_Terminate runs) and is
' raised again in the statement that made it, where the caller's handler traps it: for New and for the
' first use of an object module's default instance.
Sub Main
    Dim f As Faulty
    On Error Resume Next
    Set f = New Faulty
    Debug.Print Err.Number; Err.Description; f Is Nothing
    Err.Clear
    Debug.Print "ready:"; Faulty.Ready
    Debug.Print Err.Number; Err.Description
    Debug.Print "end"
End Sub
