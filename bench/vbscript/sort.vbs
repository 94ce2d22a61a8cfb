' Array sort: a recursive quicksort of pseudo-random numbers in a script-level array.
Option Explicit
Dim data

Sub QuickSort(ByVal low, ByVal high)
    Dim i, j, pivot, t
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
    Const n = 200000
    Dim i, x, s
    ReDim data(n - 1)
    x = 42
    For i = 0 To n - 1
        x = (x * 1366 + 150889) Mod 714025
        data(i) = x
    Next
    QuickSort 0, n - 1
    s = 0
    For i = 0 To n - 1
        s = (s * 31 + data(i)) Mod 1000003
    Next
    WScript.Echo "checksum " & s
End Sub

Main
