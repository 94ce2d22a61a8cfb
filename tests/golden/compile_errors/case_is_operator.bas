' Case Is takes only the six comparison operators.
Sub Main
    Dim n As Integer
    Select Case n
        Case Is Like "1*"
            Debug.Print "never printed"
    End Select
End Sub
