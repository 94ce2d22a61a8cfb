' ByRef changes the caller's variable of the same type; a Long given to a ByRef Integer is a copy
Sub Bump(n As Integer)
    n = n + 1
End Sub

Sub BumpByVal(ByVal n As Integer)
    n = n + 1
End Sub

Sub Main
    Dim i As Integer, l As Long
    i = 1: l = 1
    Bump i
    Debug.Print i
    Bump l
    Debug.Print l
    BumpByVal i
    Debug.Print i
    Bump (i)
    Debug.Print i
    Debug.Print "end"
End Sub
