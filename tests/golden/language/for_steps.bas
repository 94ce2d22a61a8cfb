' Negative and fractional steps; start, end and step are evaluated once
Dim calls As Integer

Function Traced(ByVal what As String, ByVal v As Double) As Double
    calls = calls + 1
    Debug.Print what
    Traced = v
End Function

Sub Main
    Dim x As Double, i As Integer
    For x = Traced("start", 1) To Traced("end", 0) Step Traced("step", -0.25)
        Debug.Print x
    Next x
    Debug.Print calls
    For i = 5 To 1 Step -2
        Debug.Print i;
    Next
    Debug.Print
    For x = 0 To 1 Step 0.5
        Debug.Print x;
    Next
    Debug.Print
    For i = 1 To 0
        Debug.Print "never"
    Next
    Debug.Print i
End Sub
