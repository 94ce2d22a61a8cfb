' Format without a form: Empty and Null give "", numeric text becomes its number, the rest locale text
Sub Main
    Debug.Print Format(Empty); Format(Null); Format(True); Format(False)
    Debug.Print Format("007"); Format("abc"); Format(1.5); Format(#1/1/2000#); Format(12, "")
    Debug.Print TypeName(Format(5))
    Debug.Print "end"
End Sub
