' A Null string argument makes the result Null and nothing after it is evaluated: a procedure that a
' later argument would call does not run. Arguments before it have run.
Dim calls As Integer

Function Count(ByVal size As Integer) As Integer
    calls = calls + 1
    Count = size
End Function

Function Nothing_() As Variant
    calls = calls + 10
    Nothing_ = Null
End Function

Sub Main
    Dim v As Variant, zero As Integer
    v = Null
    Debug.Print IsNull(Left(v, Count(2))); calls
    Debug.Print IsNull(Mid(v, Count(1), Count(2))); calls
    Debug.Print IsNull(Right(Nothing_(), Count(1))); calls
    Debug.Print IsNull(InStr(Count(1), v, "x")); calls
    Debug.Print IsNull(Left(v, 1 / zero)); calls
    ' The expression goes on after the skipped call.
    Debug.Print "<" & Left(v, Count(3)) & ">"; calls
    Debug.Print Len(Left("abcdef", Count(3))); calls
    ' A "$" call cannot give Null.
    On Error Resume Next
    Debug.Print Left$(v, Count(2))
    Debug.Print Err.Number; calls
End Sub
