'#Uses "lib/Changer.cls"
' Arguments of a late-bound call: variables go by reference, except a fixed-length String and a Variant
' parameter that is itself a reference, which go as copies; a wrong argument count is the automation
' error 10097.
Sub PassOn(v As Variant, o As Object)
    o.SetValue v
    Debug.Print "inside:"; v
End Sub

Sub Main
    Dim o As Object, s As String, fs As String * 3, w As Variant
    Set o = New Changer
    s = "abc": fs = "abc": w = 5
    o.SetText s
    o.SetText fs
    o.SetValue w
    Debug.Print s; " ["; fs; "]"; Len(fs); w
    w = 5
    PassOn w, o
    Debug.Print "after:"; w
    Debug.Print o.Pair(1, 2); o.Pair(b:=3, a:=4)
    On Error Resume Next
    Debug.Print o.Pair(1)
    Debug.Print Err.Number; Err.Description
    Err.Clear
    Debug.Print o.Pair(1, 2, 3)
    Debug.Print Err.Number
    Err.Clear
    Debug.Print o.Pair(, 2)
    Debug.Print Err.Number
End Sub
