Sub Main
    Debug.Print 1 + 2
    Debug.Print 7 \ 2; 7 Mod 2
End Sub
