' Array sort: a recursive quicksort of pseudo-random Longs in a module-level array.
Dim data() As Long

Sub QuickSort(ByVal low As Long, ByVal high As Long)
    Dim i As Long, j As Long, pivot As Long, t As Long
    i = low
    j = high
    pivot = data((low + high) \ 2)
    Do While i <= j
        Do While data(i) < pivot
            i = i + 1
        Loop
        Do While data(j) > pivot
            j = j - 1
        Loop
        If i <= j Then
            t = data(i)
            data(i) = data(j)
            data(j) = t
            i = i + 1
            j = j - 1
        End If
    Loop
    If low < j Then QuickSort low, j
    If i < high Then QuickSort i, high
End Sub

Sub Main
    Const n As Long = 200000
    Dim i As Long, x As Long, s As Long
    ReDim data(n - 1)
    x = 42
    For i = 0 To n - 1
        x = (x * 1366 + 150889) Mod 714025
        data(i) = x
    Next i
    QuickSort 0, n - 1
    s = 0
    For i = 0 To n - 1
        s = (s * 31 + data(i)) Mod 1000003
    Next i
    Debug.Print "checksum " & s
End Sub
