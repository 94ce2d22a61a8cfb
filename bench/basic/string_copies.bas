' String copies: a String from a String array and from a record field into a variable and into
' another record, each then compared or measured.
Type Person
    Name As String
    City As String
    Age As Long
End Type

Sub Main
    Dim names(4) As String, cities(4) As String, people(4) As Person
    Dim i As Long, k As Long, s As String, t As String, total As Long
    names(0) = "alpha"
    names(1) = "beta"
    names(2) = "gamma"
    names(3) = "delta"
    names(4) = "epsilon"
    cities(0) = "Oslo"
    cities(1) = "Lima"
    cities(2) = "Quito"
    cities(3) = "Bern"
    cities(4) = "Accra"
    For i = 0 To 4
        people(i).Name = names(i)
        people(i).City = cities(i)
        people(i).Age = 20 + i
    Next i
    For i = 1 To 1000000
        k = i Mod 5
        s = names(k)
        t = people(k).City
        people((k + 1) Mod 5).Name = s
        If s = "beta" Then total = total + people(k).Age
        total = total + Len(t) + Len(people(k).Name)
    Next i
    Debug.Print "checksum " & total
End Sub
