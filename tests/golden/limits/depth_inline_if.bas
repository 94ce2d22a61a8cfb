' Single-line Ifs one level past the limit.
Function F(x)
    F = x
End Function
Sub Main
    If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then If 1 Then Debug.Print 1
End Sub
