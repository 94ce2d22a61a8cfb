Sub Main
    Debug.Print 1;
    Debug.Print 2
End Sub
