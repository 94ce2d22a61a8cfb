' As New needs a class: a value type is refused.
Sub Main
    Dim n As New Integer
    Debug.Print n
End Sub
