' An untrapped error in a statement continued over two lines is reported at its first line
Sub Main
    Dim total As Long, zero As Long
    Debug.Print "start"
    total = 10 + _
        20 \ zero
    Debug.Print "never printed"
End Sub
