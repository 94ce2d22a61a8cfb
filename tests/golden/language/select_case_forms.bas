' Case with Is comparisons, ranges, lists and a mix of them
Function Kind(ByVal n As Long) As String
    Select Case n
        Case Is < 0, 100
            Kind = "neg or hundred"
        Case 0
            Kind = "zero"
        Case 1 To 3, 7
            Kind = "low or seven"
        Case 4 To 6
            Kind = "middle"
        Case Is >= 50
            Kind = "big"
        Case Else
            Kind = "else"
    End Select
End Function

Sub Main
    Debug.Print Kind(-4)
    Debug.Print Kind(0)
    Debug.Print Kind(2)
    Debug.Print Kind(7)
    Debug.Print Kind(5)
    Debug.Print Kind(100)
    Debug.Print Kind(60)
    Debug.Print Kind(9)
    Debug.Print "end"
End Sub
