' RGB and QBColor.
Sub Main
    Debug.Print RGB(255, 0, 0); RGB(0, 255, 0); RGB(0, 0, 255); RGB(1, 2, 3)
    Debug.Print Hex(QBColor(0)); " "; Hex(QBColor(1)); " "; Hex(QBColor(7)); " "; Hex(QBColor(12)); " "; Hex(QBColor(15))
    Debug.Print RGB(256, 0, 0)
    Debug.Print "not reached"
End Sub
