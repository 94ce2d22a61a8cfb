' DateSerial carries months and days over; two-digit years follow the platform; TimeSerial makes fractions
Sub Main
    Debug.Print DateSerial(2000, 2, 30); DateSerial(1999, 13, 1); DateSerial(2000, 0, 1)
    Debug.Print DateSerial(2000, 1, 0); DateSerial(2000, 1, 35); DateSerial(2000, 3, -1)
    Debug.Print DateSerial(99, 1, 1); DateSerial(0, 12, 31); DateSerial(100, 1, 1)
    Debug.Print TimeSerial(13, 45, 30); TimeSerial(0, 90, 0); TimeSerial(25, 0, 0)
    Debug.Print CDbl(TimeSerial(12, 0, 0)); Hour(TimeSerial(-1, 0, 0))
    Debug.Print TypeName(DateSerial(2000, 1, 1))
    On Error Resume Next
    Debug.Print DateSerial(10000, 1, 1)
    Debug.Print Err.Number
    Debug.Print "end"
End Sub
