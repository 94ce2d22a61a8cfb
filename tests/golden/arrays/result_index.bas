' A function's result that holds an array can be indexed at once
Function Pair(ByVal a As Long, ByVal b As Long)
    Pair = Array(a, b)
End Function

Function Grid() As Long()
    Dim g(1, 2) As Long
    g(1, 2) = 12
    Grid = g
End Function

Sub Main
    Debug.Print Split("red green blue")(1)
    Debug.Print Split("a,b,c", ",")(2) & "!"
    Debug.Print Pair(4, 5)(0) + Pair(4, 5)(1)
    Debug.Print Grid()(1, 2)
    Debug.Print UBound(Split("x y z")) + LBound(Pair(1, 2))
    On Error Resume Next
    Debug.Print Split("one")(3)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print Pair(1, 2)(0, 0)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print Left("abc", 2)(1)
    Debug.Print Err.Number
End Sub
