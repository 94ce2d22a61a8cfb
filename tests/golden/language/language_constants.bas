' The language's own constants, in expressions, Case labels and Const declarations; a macro's own
' declaration of such a name wins inside that macro.
Const Greeting = "Hi" & vbTab & "there"
Const Flags = vbYesNo + vbQuestion

Function Kind(ByVal x As Variant) As String
    Select Case VarType(x)
        Case vbInteger, vbLong: Kind = "whole"
        Case vbString: Kind = "text"
        Case vbDouble: Kind = "real"
        Case vbArray + vbVariant: Kind = "array"
        Case Else: Kind = "other"
    End Select
End Function

Sub Main
    Debug.Print Kind(5); Kind("a"); Kind(1.5); Kind(Array(1)); Kind(Null)
    Debug.Print Len(vbCrLf); Asc(vbTab); Len(vbNullString); vbObjectError; Flags
    Debug.Print Greeting
    Debug.Print StrConv("hello world", vbUpperCase); Weekday(#1/7/2024#) = VBSUNDAY
    Debug.Print vbNewLine = Chr(13) & Chr(10); vbYes; vbFirstFourDays
    Debug.Print Shadowed()
End Sub

Function Shadowed() As Long
    Dim vbLong As Long
    vbLong = 99
    Shadowed = vbLong
End Function
