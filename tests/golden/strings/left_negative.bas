' A negative length is an invalid argument.
Sub Main
    Debug.Print Left("abc", 1)
    Debug.Print Left("abc", -1)
    Debug.Print "not reached"
End Sub
