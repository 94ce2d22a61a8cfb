' CreateObject and GetObject failures and the errors servers raise reach Err with their numbers.
Sub Main
    Dim o As Object
    On Error Resume Next
    Set o = CreateObject("No.Such.Server")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Set o = CreateObject("")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    ' A class identifier that no server is registered for.
    Set o = CreateObject("{00000000-0000-0000-0000-0000000000AB}")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Set o = GetObject(, "Scripting.Dictionary")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Set o = GetObject(, "No.Such.Server")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Set o = GetObject("", "Scripting.Dictionary")
    Debug.Print Err.Number; TypeName(o)
    Set o = GetObject("C:\no such folder\nothing.xyz")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    ' The server's own error: the key exists already.
    Set o = CreateObject("Scripting.Dictionary")
    o.Add "k", 1
    o.Add "k", 2
    Debug.Print Err.Number = &H800A01C9
    Err.Clear
    o.Fly 1
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print o.Exists()
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print o.Exists(Wrong:="k")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print "end"
End Sub
