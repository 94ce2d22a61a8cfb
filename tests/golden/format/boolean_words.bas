' Yes/No, True/False and On/Off: fixed words for numbers, "" for Empty and Null, other values as text
Sub Main
    Debug.Print Format(0, "Yes/No"); Format(-1, "Yes/No"); Format(0.5, "yes/no")
    Debug.Print Format(-1, "On/Off"); Format(0, "On/Off"); Format(True, "On/Off")
    Debug.Print Format(3, "True/False"); Format(False, "True/False"); Format(Null, "True/False")
    Debug.Print Format(Empty, "Yes/No"); Format("0", "Yes/No"); Format("abc", "Yes/No")
    Debug.Print Format(#1/1/2000#, "Yes/No")
    Debug.Print "end"
End Sub
