' Named number formats
Sub Main
    Debug.Print Format(1234.5, "General Number"); Format("1e3", "General Number"); Format(Null, "General Number")
    Debug.Print Format(1234.5, "Currency"); Format(-1234.5, "Currency"); Format(0, "Currency")
    Debug.Print Format(1234.5, "Fixed"); Format(0.125, "Fixed"); Format(-0.5, "Fixed")
    Debug.Print Format(1234.5, "Standard"); Format(1234567.891, "standard"); Format(0.5, "Standard")
    Debug.Print Format(0.5, "Percent"); Format(1.23456, "PERCENT")
    Debug.Print Format(1234.5, "Scientific"); Format(0.000123, "Scientific"); Format(-9.9996, "Scientific")
    Debug.Print "end"
End Sub
