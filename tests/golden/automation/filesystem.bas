' Scripting.FileSystemObject: objects returned by methods, optional and named arguments, For Each over
' a collection object, type mismatch of an argument.
Sub Main
    Dim fso As Object, t As Object, f
    Set fso = CreateObject("Scripting.FileSystemObject")
    Dim folder As String, p As String
    folder = fso.GetSpecialFolder(2).Path
    p = fso.BuildPath(folder, "brannoc_golden_fso.txt")
    Set t = fso.CreateTextFile(p, True)
    t.WriteLine "first"
    t.Write "second"
    t.Close
    Debug.Print fso.FileExists(p)
    Set t = fso.OpenTextFile(p, IOMode:=1)
    Debug.Print t.ReadLine
    Debug.Print t.ReadAll
    t.Close
    Debug.Print fso.GetFile(p).Size
    Debug.Print fso.GetExtensionName(p); " "; fso.GetBaseName(Path:=p)
    Dim n As Long
    For Each f In fso.GetFolder(folder).Files
        If f.Name = "brannoc_golden_fso.txt" Then n = n + 1
    Next
    Debug.Print n
    fso.DeleteFile p
    Debug.Print fso.FileExists(p)
    On Error Resume Next
    fso.DeleteFile p
    Debug.Print Err.Number = &H800A0035
    ' The server's record as it came: no description gives the code's default text, no help file none.
    Debug.Print Err.Description; "["; Err.HelpFile; "]"
    Err.Clear
    Debug.Print fso.GetBaseName(Array(1))
    Debug.Print Err.Number; Err.Description
    Debug.Print "end"
End Sub
