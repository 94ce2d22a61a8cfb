' The Err object's properties: Number is the default member; assignments; read-only LastDllError
Sub Main
    Debug.Print Err; Err.Number; Err.LastDllError
    Err.Number = 10061
    Debug.Print Err.Number; Err.Description
    Err.Description = "Changed."
    Err.Source = "here"
    Err.HelpContext = 12
    Err.HelpFile = "x.hlp"
    Debug.Print Err.Description; Err.Source; Err.HelpContext; Err.HelpFile
    Err = 10023
    Debug.Print Err; Err.Description; Err.Source
    If Err Then Debug.Print "an error is recorded"
    Err.Number = 0
    Debug.Print Err; Err.Description; Err.Source; Err.HelpContext
    Dim n As Long
    n = Err + 1
    Debug.Print n
    Debug.Print "end"
End Sub
