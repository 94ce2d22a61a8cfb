' A string longer than the platform's strings can hold, or one whose memory cannot be had, is the
' error "Out of memory." (10001), which the macro can trap: the engine goes on, the variable keeps its
' value and later errors are raised as usual.
Sub Main
    Dim s As String, v As Variant, zero As Integer
    s = "kept"
    On Error Resume Next
    s = Space$(2147483647)
    Debug.Print Err.Number; Err.Description; s
    Err.Clear
    s = String$(1073741800, "x")
    Debug.Print Err.Number; Err.Description; s
    Err.Clear
    v = "a" & Space$(1073741000)
    Debug.Print Err.Number; Err.Description; IsEmpty(v)
    On Error GoTo Failed
    s = s & String$(2000000000, 65)
    Debug.Print "not reached"
    Exit Sub
Failed:
    Debug.Print "trapped"; Err.Number; Err.Description
    Resume Continue
Continue:
    s = s & "!"
    Debug.Print s; Len(Space$(3))
    On Error GoTo 0
    Debug.Print 1 / zero
End Sub
