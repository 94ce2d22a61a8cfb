' Results of arithmetic on variables of each kind: kinds climb Integer -> Long -> Double on overflow.
Sub Main
    Dim i As Integer, j As Integer, l As Long, m As Long, d As Double, v As Variant, w As Variant
    i = 32767
    j = 1
    v = i + j
    Debug.Print v; i * 2; i - (-1); -i - 2
    l = 2147483647
    m = 1
    v = l + m
    Debug.Print v; l * 2; -l - 2
    v = 100
    w = 200
    Debug.Print v + w; v * w; v * w * w * w; (v * w) \ 7; (v * w) Mod 7
    i = -7
    j = 2
    Debug.Print i \ j; i Mod j; 7 Mod -2; i / j; i And j; i Or j; i Xor j; Not i
    l = -7
    m = 2
    Debug.Print l \ m; l Mod m; l / m; l And m; l Or m; Not l; l = m; l < m; l >= -7
    d = 2.5
    Debug.Print d + l; d * m; l - d; d / 0.5; d = 2.5; d < l; d \ 1; d Mod 2
    v = 7.5
    Debug.Print v \ 2; v + j; v * i
    Debug.Print True + True; True And True; (1 < 2) Or (2 < 1); Not (1 < 2)
    Debug.Print "end"
End Sub
