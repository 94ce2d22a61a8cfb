' Every kind of statement once, most inside other blocks: Dim, Static, Const, ReDim, Erase, LSet,
' RSet, Mid, Let, Set, Call, If/ElseIf/Else, Select Case, For, For Each, Do While/Until, Loop While/Until,
' While/Wend, With, GoTo, Exit For/Do/Sub/Function/Property, property procedures and End.
Dim m_stored As String

Property Get Stored() As String
    If m_stored = "" Then
        Stored = "(none)"
        Exit Property
    End If
    Stored = m_stored
End Property

Property Let Stored(ByVal text As String)
    m_stored = text
End Property

Function FirstEven(values() As Integer) As Integer
    Dim value As Variant
    For Each value In values
        If value Mod 2 = 0 Then
            FirstEven = value
            Exit Function
        End If
    Next
    FirstEven = -1
End Function

Sub Report(ByVal label As String, ByVal value As Variant)
    Debug.Print label; value
End Sub

Sub Counted()
    Static calls As Integer
    calls = calls + 1
    Report "calls", calls
    If calls = 2 Then Exit Sub
    Report "first call only", calls
End Sub

Sub Main
    Const Size = 4
    Dim numbers() As Integer, i As Integer, total As Long
    ReDim numbers(1 To Size)
    For i = 1 To Size
        Select Case i
        Case 1
            Let numbers(i) = 3
        Case 2, 3
            numbers(i) = i * 5
        Case Else
            numbers(i) = 7
        End Select
    Next
    Report "first even", FirstEven(numbers)
    i = 0
    Do Until i = Size
        i = i + 1
        If numbers(i) > 8 Then
            total = total + numbers(i)
        ElseIf numbers(i) = 3 Then
            total = total - 1
        Else
            Do
                total = total + 100
                Exit Do
            Loop While True
        End If
    Loop
    Report "total", total
    i = 0
    Do
        i = i + 1
    Loop While i < 3
    While i > 0
        i = i - 1
        If i = 1 Then GoTo Done
    Wend
Done:
    Report "left While at", i
    Dim fixedNumbers(2) As Integer
    fixedNumbers(1) = 5
    Erase fixedNumbers
    Report "erased", fixedNumbers(1)
    Dim fixed As String * 6
    fixed = "abcdef"
    LSet fixed = "xy"
    Report "LSet", "[" & fixed & "]"
    RSet fixed = "xy"
    Report "RSet", "[" & fixed & "]"
    Mid(fixed, 1, 2) = "<>"
    Report "Mid", "[" & fixed & "]"
    Call Counted
    Call Counted()
    Counted
    Report "property", Stored
    Stored = "kept"
    Report "property", Stored
    Dim holder As Object
    Set holder = Nothing
    Report "Nothing", holder Is Nothing
    Debug.Print "ending"
    End
    Debug.Print "not reached"
End Sub
