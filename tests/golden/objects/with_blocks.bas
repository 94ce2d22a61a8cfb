'#Uses "lib/Node.cls"
' With blocks: the object is evaluated once; .members, nested With, With on a new object (released
' at End With), Exit For and GoTo out of a With block, With inside a loop.
Function Made(ByVal label As String) As Node
    Debug.Print "making " & label
    Set Made = New Node
    Made.Label = label
End Function

Sub Main
    Dim root As New Node
    root.Label = "root"
    With root
        .Rename "renamed"
        Set .Child = Made("inner")
        With .Child
            .Bump 2
            Debug.Print .Label; .Count; .Describe("inner is ")
        End With
        Debug.Print .Label; .Child.Count
        .Count = 7
    End With
    Debug.Print root.Count
    With Made("temporary")
        Debug.Print .Describe()
    End With
    Debug.Print "after temporary"
    Dim i As Integer
    For i = 1 To 3
        With root.Child
            .Bump
            If .Count = 4 Then Exit For
        End With
    Next
    Debug.Print "exit at"; i; root.Child.Count
    With Made("left by GoTo")
        GoTo Outside
    End With
Outside:
    Debug.Print "outside"
    Dim v As Variant
    Set v = root
    With v
        .Label = "late"
        Debug.Print .Describe(); .Child.Label
    End With
    Debug.Print "done"
End Sub
