' Eval: an expression given as text, in the scope of the running procedure
Dim total As Long

Function Square(ByVal v As Double) As Double
    Square = v * v
End Function

Function Again(ByVal n As Long) As Long
    Again = Deeper(n)
End Function

' An Eval that leads to itself again ends with Overflow instead of exhausting the stack.
Function Deeper(ByVal n As Long) As Long
    Deeper = Eval("Again(n + 1)")
End Function

Sub Show(ByVal text As String)
    Dim n As Integer
    n = 5
    Debug.Print text; " -> "; Eval(text)
End Sub

Sub Main
    Dim x As Integer, s As String
    x = 6
    s = "abc"
    total = 40
    Debug.Print Eval("1+2")
    Debug.Print Eval("x * 7"); Eval("s & ""!""")
    Debug.Print Eval("total + x")
    Debug.Print Eval("Square(x) + 0.5")
    Debug.Print Eval("UCase(s) & Len(s)")
    Show "n * 2"
    Show "Eval(""n + 1"")"
    Debug.Print TypeName(Eval("x")); " "; TypeName(Eval("CDbl(x)"))
    On Error Resume Next
    Debug.Print Eval("1 +")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print Eval("x / 0")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print Eval("NoSuchThing(1)")
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print Again(1)
    Debug.Print Err.Number; Err.Description
    On Error GoTo 0
    Debug.Print "done"; x
End Sub
