' For loops over counters of each kind, with positive, negative and fractional steps.
Sub Main
    Dim i As Integer, l As Long, d As Double, v As Variant
    For i = 32764 To 32766
        Debug.Print i;
    Next i
    Debug.Print
    For v = 32765 To 32769
        Debug.Print v;
    Next v
    Debug.Print
    For l = 10 To 1 Step -3
        Debug.Print l;
    Next l
    Debug.Print l
    For d = 0 To 1 Step 0.25
        Debug.Print d;
    Next d
    Debug.Print d
    For v = 1.5 To 3
        Debug.Print v;
    Next v
    Debug.Print v
    For l = 5 To 4
        Debug.Print "never"
    Next l
    Debug.Print l
    Debug.Print "end"
End Sub
