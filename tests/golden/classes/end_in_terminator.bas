' An End inside a terminator that runs as the procedure holding the object ends cannot end the run from
' there: it is an error of the terminator ("Invalid instruction."), reported, and the run stops
'#Uses "lib/TerminateEnder.cls"

Sub Inner
    Dim t As New TerminateEnder
    Debug.Print TypeName(t)
End Sub

Sub Main
    Inner
    Debug.Print "never printed"
End Sub
