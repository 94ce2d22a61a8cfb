' The elements of a record that a function returns are read straight from the result.
Type Size
    Width As Long
    Label As String
End Type
Function Measure(ByVal w As Long) As Size
    Measure.Width = w
    Measure.Label = "w" & w
End Function
Sub Main
    Debug.Print Measure(7).Width; Measure(8).Label
    Debug.Print Measure(2).Width * Measure(3).Width
    On Error Resume Next
    Debug.Print Measure(1).Height
    Debug.Print Err.Number; Err.Description
End Sub
