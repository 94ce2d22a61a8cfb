' Array elements passed to by-reference parameters: assignments in the callee reach the element (a
' parenthesised element is passed by value); the array keeps its storage while the call runs.
Dim shared() As Long

Sub Swap(x As Long, y As Long)
    Dim t As Long
    t = x: x = y: y = t
End Sub

Sub Twice(s As String)
    s = s & s
End Sub

Function Bump(v As Variant) As Integer
    v = v + 1
    Bump = v
End Function

Sub Regrow(x As Long)
    On Error Resume Next
    ReDim shared(100)
    Debug.Print "ReDim while passed:"; Err.Number; Err.Description
    Err.Clear
    Erase shared
    Debug.Print "Erase while passed:"; Err.Number
    x = 42
End Sub

Sub Main
    Dim a(1 To 3) As Long, i As Integer
    a(1) = 1: a(2) = 2: a(3) = 3
    Swap a(1), a(3)
    Debug.Print a(1); a(2); a(3)
    i = 2
    Swap a(i), a(i + 1)
    Debug.Print a(1); a(2); a(3)
    Dim n(2) As String
    n(1) = "ab"
    Twice n(1)
    Twice (n(1))
    Debug.Print n(1)
    Dim v
    v = Array(10, 20)
    Debug.Print Bump(v(1)); v(1)
    ' An Integer element given to a Long parameter is a converted copy: it does not change.
    Dim b(3) As Integer
    b(1) = 7
    Swap a(1), b(1)
    Debug.Print a(1); b(1)
    ReDim shared(2)
    Regrow shared(1)
    Debug.Print shared(1); UBound(shared)
    ReDim shared(5)
    Debug.Print "ReDim afterwards:"; UBound(shared)
End Sub
