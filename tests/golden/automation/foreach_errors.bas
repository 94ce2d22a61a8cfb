' For Each over an object without an enumerator raises 10090; over Nothing 10094.
Sub Walk(o As Object)
    Dim x
    On Error GoTo Failed
    For Each x In o
        Debug.Print "element"
    Next
    Debug.Print "walked"
    Exit Sub
Failed:
    Debug.Print Err.Number; Err.Description
End Sub

Sub Main
    Walk CreateObject("Scripting.FileSystemObject")
    Walk Nothing
    ' An empty collection runs the body no time.
    Walk CreateObject("Scripting.Dictionary")
    Dim d As Object
    Set d = CreateObject("Scripting.Dictionary")
    d.Add 1, 1
    Walk d
    Debug.Print "end"
End Sub
