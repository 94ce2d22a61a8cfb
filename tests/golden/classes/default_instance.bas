'#Uses "lib/Settings.cls"
' The name of an object module stands for its default instance: made at its first use (its
' Class_Initialize runs then, once), shared by every use, ended when the module is unloaded.
Sub Show()
    Debug.Print "limit"; Settings.Limit; "twice"; Settings.Twice()
End Sub

Sub Main
    Debug.Print "before the first use"
    Show
    Settings.Limit = 10
    Show
    Dim same As Settings, other As Settings
    Set same = Settings
    Set other = New Settings
    Debug.Print same Is Settings; other Is Settings; other.Limit; TypeName(Settings)
    Set other = Nothing
    Debug.Print "end of Main"
End Sub
