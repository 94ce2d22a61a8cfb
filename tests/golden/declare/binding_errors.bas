' A library that cannot be loaded raises 10040 and an entry it lacks 10041, at the call, each time.
Declare Function Missing Lib "kernel32" () As Long
Declare Function NoLibrary Lib "no_such_library_at_all" () As Long
Declare Function NoOrdinal Lib "bbdeclare.test" Alias "#999" () As Long

Sub Main
    On Error Resume Next
    Debug.Print Missing()
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print Missing()
    Debug.Print Err.Number
    Err.Clear
    Debug.Print NoLibrary()
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print NoOrdinal()
    Debug.Print Err.Number
    On Error GoTo 0
    Debug.Print "untrapped next"
    Missing
End Sub
