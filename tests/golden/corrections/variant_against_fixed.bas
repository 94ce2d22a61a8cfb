' A Variant compared with (or combined with) a value of a fixed kind takes that kind first: the text 5
' in a Variant equals the literal 5, and a Variant holding 5 equals the literal text "5".
Sub Main
    Dim v, w, s As String, n As Integer
    v = "5"
    w = 5
    Debug.Print v = 5; 5 = v; w = "5"; "5" = w; v < 6; v = 5.0; v <> 5
    Debug.Print v + 1; w + "1"; w & "x"
    ' Between a String and a number of fixed kinds the right one takes the left one's kind; two
    ' Variants compare as they are: every number is less than every text.
    s = "5": n = 5
    Debug.Print s = n; v = n; w = s; v = w; v > w
    Debug.Print n = s; s + n; n + s; "5" = 5; 5 = "5"; s < 10; 10 > s
    For n = 4 To 6
        If s = n Then Debug.Print "in the loop"; n
        If n * 2 = s + s Then Debug.Print "never"
    Next
    ' Select Case applies the same rule between a Variant selector and its Case values.
    Select Case v
    Case 4: Debug.Print "case 4"
    Case 5: Debug.Print "case 5"
    Case Else: Debug.Print "else"
    End Select
    Select Case v
    Case 1 To 9: Debug.Print "range"
    End Select
    Select Case w
    Case Is >= "5": Debug.Print "is"
    End Select
    ' A text that is no number against a number is a type mismatch.
    v = "abc"
    On Error Resume Next
    Debug.Print v = 5
    Debug.Print Err.Number
End Sub
