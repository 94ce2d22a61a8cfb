' ParamArray collects any number of arguments
Function CountAndSum(ByVal label As String, ParamArray items() As Variant) As String
    Dim v As Variant, total As Double, n As Integer
    For Each v In items
        total = total + v
        n = n + 1
    Next
    CountAndSum = label & n & ":" & total
End Function

Sub Main
    Debug.Print CountAndSum("none")
    Debug.Print CountAndSum("one", 4)
    Debug.Print CountAndSum("three", 1, 2.5, 3)
    Debug.Print "end"
End Sub
