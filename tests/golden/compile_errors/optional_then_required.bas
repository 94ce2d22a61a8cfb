' After an Optional parameter every later parameter of a Sub must be Optional too.
Sub Show(Optional first As Integer = 1, second As Integer)
End Sub

Sub Main
End Sub
