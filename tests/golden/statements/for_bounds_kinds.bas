' A For loop keeps its end and step in the counter's kind only where that keeps their values: a
' fractional end or step, or a negative step of a Byte counter, keeps its own kind, and only each sum
' stored into the counter takes the counter's kind.
Sub Main
    Dim i As Integer, y As Byte, k As Long, d As Double
    For i = 1 To 3.5: Debug.Print i;: Next: Debug.Print
    For i = 1 To 3 Step 1.5: Debug.Print i;: Next: Debug.Print
    For k = 10 To 1 Step -2.5: Debug.Print k;: Next: Debug.Print
    For k = 1 To 2000000000# Step 1000000000: Debug.Print k;: Next: Debug.Print
    For k = 1 To 6 Step 2#: Debug.Print k;: Next: Debug.Print
    For d = 0 To 1 Step 0.25: Debug.Print d;: Next: Debug.Print
    ' A Byte counter counts down to 0; the step past it does not fit a Byte.
    On Error Resume Next
    For y = 3 To 0 Step -1: Debug.Print y; " ";: Next: Debug.Print
    Debug.Print Err.Number; y
    Err.Clear
    For y = 254 To 255: Debug.Print y; " ";: Next: Debug.Print
    Debug.Print Err.Number; y
    ' A Boolean counter holds 0 and -1 only: the step of 1 keeps its own kind, so False To True
    ' (0 to -1) is empty and True To False runs with True, then False.
    Dim b As Boolean, n As Integer
    For b = False To True: Debug.Print "never";: Next
    For b = True To False: Debug.Print b; " ";: n = n + 1: If n = 5 Then Exit For
    Next: Debug.Print n
    For b = True To False Step -1: Debug.Print "never";: Next
    For b = False To True Step -1: Debug.Print b; " ";: n = n + 1: If n = 8 Then Exit For
    Next: Debug.Print n
End Sub
