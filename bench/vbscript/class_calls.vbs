' Method calls on a class instance in a loop.
Option Explicit
Class Accumulator
    Private m_total
    Private m_count

    Private Sub Class_Initialize()
        m_total = 0
        m_count = 0
    End Sub

    Public Sub Add(ByVal value)
        m_total = (m_total + value) Mod 1000003
        m_count = m_count + 1
    End Sub

    Public Function Total()
        Total = m_total
    End Function

    Public Function Count()
        Count = m_count
    End Function
End Class


Sub Main
    Dim acc, i
    Set acc = New Accumulator
    For i = 1 To 1500000
        acc.Add i
    Next
    WScript.Echo "checksum " & (acc.Total() + acc.Count())
End Sub

Main
