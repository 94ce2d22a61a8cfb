' An operator refuses a whole array as its operand when the statement is compiled.
Sub Main
    Dim counts(2) As Integer
    Debug.Print "never printed"
    Debug.Print counts + 1
End Sub
