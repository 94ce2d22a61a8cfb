' CallByName reaches a member named at run time as a method, a property read and a property let.
Sub Main
    Dim d As Object
    Set d = CreateObject("Scripting.Dictionary")
    CallByName d, "Add", vbMethod, "a", 10
    Debug.Print CallByName(d, "Exists", vbMethod, "a")
    Debug.Print CallByName(d, "Count", vbGet)
    Debug.Print CallByName(d, "Item", vbGet, "a")
    CallByName d, "Item", vbLet, "a", 20
    Debug.Print d("a")
    Dim name As String
    name = "Co" & "unt"
    Debug.Print CallByName(d, name, vbGet)
    On Error Resume Next
    Debug.Print CallByName(d, "Nope", vbGet)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Set d = Nothing
    Debug.Print CallByName(d, "Count", vbGet)
    Debug.Print Err.Number; Err.Description
    Debug.Print "end"
End Sub
