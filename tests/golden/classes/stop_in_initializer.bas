' A Stop inside a class initializer, which runs nested in the statement that makes the object, is passed
' over: the initializer runs to its end and the run goes on
'#Uses "lib/Stopper.cls"

Sub Main
    Dim s As Stopper
    Set s = New Stopper
    Debug.Print "made"; s Is Nothing
    Debug.Print "end"
End Sub
