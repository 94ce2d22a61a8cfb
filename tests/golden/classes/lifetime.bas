'#Uses "lib/Counter.cls"
' Class_Initialize runs when an instance is made (at first use for As New), Class_Terminate when its
' last reference goes: on Set ... = Nothing, on replacement, or when the procedure's variables go.
Sub Make()
    Dim inner As New Counter
    Debug.Print "before first use"
    inner.Name = "inner"
    inner.Add 3
    Debug.Print "leaving Make"
End Sub

Sub Main
    Dim a As Counter
    Dim b As Counter
    Set a = New Counter
    a.Name = "a"
    Set b = a
    Set a = Nothing
    Debug.Print "a released, b still holds it"
    Set b = New Counter
    Debug.Print "b replaced"
    b.Name = "b"
    Make
    Debug.Print "back in Main"
End Sub
