' A Const whose text is not a number cannot take a numeric type.
Const Count As Integer = "many"

Sub Main
    Debug.Print "never printed"
End Sub
