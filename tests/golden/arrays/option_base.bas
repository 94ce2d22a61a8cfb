Option Base 1
' Option Base 1 gives dimensions without a lower bound the lower bound 1
Dim shared(3) As Integer

Sub Main
    Dim a(2) As String
    Dim d() As Long
    ReDim d(4)
    Debug.Print LBound(shared); UBound(shared); LBound(a); LBound(d); UBound(d)
    Debug.Print "end"
End Sub
