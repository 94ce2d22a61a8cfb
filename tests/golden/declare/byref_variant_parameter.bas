' A ByRef Long parameter that stands for a caller's Variant, passed on to a library routine: the routine
' gets a Long made from what the Variant holds, and the Variant takes the Long the routine wrote; text
' that is not a number is a type mismatch, and the Variant keeps it.
Declare Function InterlockedIncrement Lib "kernel32" (n As Long) As Long
Sub Bump(x As Long)
    Debug.Print InterlockedIncrement(x); x
End Sub
Sub Main
    Dim v
    v = 41&: Bump v: Debug.Print v; TypeName(v)
    v = 41: Bump v: Debug.Print v; TypeName(v)
    v = "41": Bump v: Debug.Print v; TypeName(v)
    v = "ab"
    On Error Resume Next
    Bump v
    Debug.Print Err.Number; v
End Sub
