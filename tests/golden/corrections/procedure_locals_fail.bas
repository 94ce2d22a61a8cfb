' A procedure whose fixed array cannot be made: the call fails where it is made, and can be trapped.
Sub Main
    On Error Resume Next
    Fill
    Debug.Print Err.Number; Err.Description
    On Error GoTo 0
    Fill
End Sub

Sub Fill
    Dim huge(400000000) As Double
    Debug.Print "never"
End Sub
