' A Long sum that climbs to Double cannot be stored back into a Long.
Sub Main
    Dim l As Long
    l = 2147483646
    l = l + 1
    Debug.Print l
    l = l + 1
    Debug.Print "not reached"
End Sub
