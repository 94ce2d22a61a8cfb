' Access is followed by Read, Write or both.
Sub Main
    Open "a.txt" For Binary Access Shared As #1
End Sub
