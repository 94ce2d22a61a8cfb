' Declare'd procedures of a library found only with ".DLL" added to its name: by name, by ordinal,
' the wide entry preferred to the ANSI one, "UNICODE:" entries, records, ByRef numbers, ByVal and
' ByRef strings that the library writes into, Double, Single and Currency results.
Declare Function AddNumbers Lib "bbdeclare.test" (ByVal a As Long, ByVal b As Long) As Long
Declare Function Seven Lib "bbdeclare.test" Alias "#42" () As Long
Declare Function Measure Lib "bbdeclare.test" (ByVal text As String) As Long
Declare Function MeasureAnsi Lib "bbdeclare.test" Alias "MeasureA" (ByVal text As String) As Long
Declare Function WideLength Lib "bbdeclare.test" Alias "UNICODE:WideOnly" (ByVal text As String) As Long
Declare Function WideOnly Lib "bbdeclare.test" Alias "UNICODE:" (ByVal text As String) As Long
Declare Function Half Lib "bbdeclare.test" (ByVal value As Double) As Double
Declare Function Third Lib "bbdeclare.test" (ByVal value As Single) As Single
Declare Function Money Lib "bbdeclare.test" () As Currency
Declare Sub FillTriple Lib "bbdeclare.test" (t As Triple)
Declare Sub Twice Lib "bbdeclare.test" (n As Long, d As Double)
Declare Sub WriteDone Lib "bbdeclare.test" (ByVal text As String)
Declare Sub Shout Lib "bbdeclare.test" (text As String)

Type Triple
    First As Long
    Second As Integer
    Third As Double
End Type

Sub Main
    Debug.Print AddNumbers(40, 2)
    Debug.Print Seven()
    Debug.Print Measure("abc"); MeasureAnsi("abc")
    Debug.Print WideLength("four"); WideOnly("three")
    Debug.Print Half(5); Third(1.5)
    Debug.Print Money()
    Dim t As Triple
    FillTriple t
    Debug.Print t.First; t.Second; t.Third
    Dim n As Long, d As Double, v As Variant
    n = 21
    d = 1.25
    Twice n, d
    Debug.Print n; d
    ' A Variant variable goes as a converted copy that is put back.
    v = 4
    Twice v, d
    Debug.Print v; d
    ' An expression goes as a copy: nothing comes back.
    Twice (n), d
    Debug.Print n
    Dim s As String
    s = "xxxxxxxx"
    WriteDone s
    Debug.Print Left(s, 4); Len(s)
    s = "quiet words"
    Shout s
    Debug.Print s
    Debug.Print "end"
End Sub
