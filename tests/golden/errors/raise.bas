' Err.Raise: default descriptions, given fields, named arguments, platform codes
Sub Show()
    Debug.Print Err.Number; " "; Err.Description; " "; Err.Source; " "; Err.HelpContext
End Sub

Sub Main
    On Error Resume Next
    Err.Raise 1000
    Show
    Err.Raise 10023
    Show
    Err.Raise 513, "lib", "Mine."
    Show
    Err.Raise Description:="Named.", Number:=600, HelpContext:=42
    Show
    Err.Raise &H80004005
    Show
    Err.Raise(65535)
    Show
    Err.Raise 65536
    Show
    Err.Raise -1
    Show
    Debug.Print Err.HelpFile = ""
    Err.Clear
    Show
    ' The Error statement: a number raises that error; 0 only clears the error object.
    Error 10061
    Show
    Error 0
    Show
    Error 65536
    Show
    Debug.Print "end"
End Sub
