' Set assigns object references only.
Sub Main
    Dim total As Long
    Set total = Nothing
End Sub
