' A Variant local assigned a sum or product that follows a call in the same statement: when the Variant
' holds a string by then, the store cannot be made in place, and the call still runs once.
Function F(ByVal k As Long) As Long
    Debug.Print "F"; k
    F = k
End Function

Sub Main
    Dim v, w, k As Long
    For k = 1 To 4
        If k = 3 Then v = "text": w = "more text"
        v = F(k) + 1
        w = F(k) * 40000
    Next k
    Debug.Print v; w
End Sub
