' As New at module level needs a class too: a user-defined type is refused.
Type Pair
    a As Long
End Type
Dim p As New Pair
Sub Main
    Debug.Print "unreachable"
End Sub
