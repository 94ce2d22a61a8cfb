'#Uses "lib/Counter.cls"
'#Uses "lib/Settings.cls"
' TypeOf object Is Type: class modules, Object, Nothing, qualified names and values that are no objects
Sub Main
    Dim c As Counter
    Dim anything As Object
    Debug.Print TypeOf c Is Counter; TypeOf c Is Object
    Set c = New Counter
    Set anything = c
    Debug.Print TypeOf c Is Counter; TypeOf anything Is Counter; TypeOf anything Is Settings
    Debug.Print TypeOf anything Is Object; Not TypeOf anything Is Settings
    Dim v
    Set v = New Settings
    If TypeOf v Is Settings And Not TypeOf v Is Counter Then Debug.Print "settings"
    Debug.Print TypeOf v Is Lib.Settings
    On Error Resume Next
    v = 5
    Debug.Print TypeOf v Is Counter
    Debug.Print Err.Number
End Sub
