' Static locals keep their values between calls; plain locals start again
Sub Counter()
    Static kept As Integer
    Dim fresh As Integer
    kept = kept + 1
    fresh = fresh + 1
    Debug.Print kept; fresh
End Sub

Sub Main
    Counter
    Counter
    Counter
    Debug.Print "end"
End Sub
