' String positions start at 1.
Sub Main
    Debug.Print Mid("abc", 1)
    Debug.Print Mid("abc", 0)
    Debug.Print "not reached"
End Sub
