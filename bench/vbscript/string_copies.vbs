' String copies: a string from an array and from a record's field into a variable and into another
' record, each then compared or measured (VBScript has no Type: the records are class instances).
Option Explicit

Class Person
    Public Name, City, Age
End Class

Sub Main
    Dim names, cities, people, i, k, s, t, total
    names = Array("alpha", "beta", "gamma", "delta", "epsilon")
    cities = Array("Oslo", "Lima", "Quito", "Bern", "Accra")
    ReDim people(4)
    For i = 0 To 4
        Set people(i) = New Person
        people(i).Name = names(i)
        people(i).City = cities(i)
        people(i).Age = 20 + i
    Next
    total = 0
    For i = 1 To 1000000
        k = i Mod 5
        s = names(k)
        t = people(k).City
        people((k + 1) Mod 5).Name = s
        If s = "beta" Then total = total + people(k).Age
        total = total + Len(t) + Len(people(k).Name)
    Next
    WScript.Echo "checksum " & total
End Sub

Main
