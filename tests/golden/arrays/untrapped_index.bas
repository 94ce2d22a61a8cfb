' An index out of range stops the run at that statement
Sub Main
    Dim a(2) As Integer
    Debug.Print "start"
    a(3) = 1
    Debug.Print "never printed"
End Sub
