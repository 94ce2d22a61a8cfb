' RGB and QBColor (the whole table of 16 colours).
Sub Main
    Debug.Print RGB(255, 0, 0); RGB(0, 255, 0); RGB(0, 0, 255); RGB(1, 2, 3)
    Dim i As Integer
    For i = 0 To 15
        Debug.Print Hex(QBColor(i)); " ";
    Next
    Debug.Print
    Debug.Print RGB(256, 0, 0)
    Debug.Print "not reached"
End Sub
