' Erase: a fixed array keeps its bounds with zero values, a dynamic one is no longer dimensioned
Sub Main
    Dim fixed(1 To 3) As Integer
    Dim texts(2) As String
    Dim padded(1) As String * 3
    Dim anything(1) As Variant
    fixed(2) = 7: texts(1) = "t": padded(0) = "abc": anything(1) = 1.5
    Erase fixed, texts, padded, anything
    Debug.Print LBound(fixed); UBound(fixed); fixed(2); texts(1); padded(0); anything(1)
    Dim dynamic() As Double
    ReDim dynamic(4)
    dynamic(4) = 1
    Erase dynamic
    On Error Resume Next
    Debug.Print dynamic(4)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print UBound(dynamic)
    Debug.Print Err.Number
    Err.Clear
    ReDim dynamic(1)
    Debug.Print UBound(dynamic); dynamic(1)
    Dim v As Variant
    ReDim v(3)
    Erase v
    Debug.Print v
    Erase v
    Debug.Print "end"
End Sub
