' A module-level variable of a type nobody declares.
Dim x As Foo

Sub Main
End Sub
