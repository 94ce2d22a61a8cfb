' Set x = Err gives the Err object itself: its members read and write the same error record.
Sub Main
    Dim e As Object
    Set e = Err
    Debug.Print TypeName(e)
    On Error Resume Next
    Error 11
    Debug.Print e.Number; e.Description
    e.Clear
    Debug.Print Err.Number; "[" & Err.Description & "]"
    e.Number = 5
    Debug.Print Err.Number; Err.Description
    e.Description = "mine"
    e.Source = "here"
    Debug.Print Err.Description; " "; Err.Source; " "; e.Source
    Err.Clear
    e.Raise 1000, "src", "custom"
    Debug.Print Err.Number; " "; Err.Source; " "; Err.Description
    Err.Clear
    Dim v As Variant
    Set v = Err
    Debug.Print v.Number; TypeName(v)
    On Error GoTo 0
    RaiseThrough e
    Debug.Print "not reached"
End Sub

Sub RaiseThrough(x As Object)
    x.Raise 9
End Sub
