' Integer and Long results stored into Variants climb to the next kind when they leave their own, as
' loops make them: an Integer counter growing into a Long, a Long product growing into a Double,
' differences falling below the Long range, and the kinds going back when the values are small again.
Dim counter

Sub Main
    Dim i, n, big, low, small As Integer, k
    For i = 1 To 3
        n = 32760
        Do While n < 32780
            n = n + 7
            Debug.Print n; TypeName(n);
        Loop
        Debug.Print
        n = 1
        Debug.Print TypeName(n)
    Next i
    n = 21470
    For i = 1 To 8
        big = n * 100000
        Debug.Print big; TypeName(big);
        n = n + 1
        low = -n * 100000 - 2147483647
        Debug.Print low; TypeName(low)
    Next i
    small = 200
    For i = 1 To 4
        k = small * small
        Debug.Print k; TypeName(k);
        small = small + 50
    Next i
    Debug.Print
    k = 46341
    k = k * k
    Debug.Print k; TypeName(k)
    k = -32768
    k = k - 1
    Debug.Print k; TypeName(k)
    counter = 32767
    counter = counter + 1
    Debug.Print counter; TypeName(counter)
    counter = 2147483647
    counter = counter + 1
    Debug.Print counter; TypeName(counter)
    counter = "text"
    counter = 5
    counter = counter * 3
    Debug.Print counter; TypeName(counter)
End Sub
