' IsMissing tells a left-out optional Variant parameter.
Sub Show(Optional x)
    Debug.Print IsMissing(x);
    If Not IsMissing(x) Then Debug.Print x;
    Debug.Print
End Sub

Sub Main
    Show
    Show 5
    Show Null
    Debug.Print "done"
End Sub
