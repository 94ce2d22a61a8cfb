' The dialog function takes three parameters.
Function Handler(item$, action%) As Boolean
End Function

Sub Main
    Begin Dialog UserDialog 200, 100, "Title", .Handler
        OKButton 10, 10, 60, 20
    End Dialog
End Sub
