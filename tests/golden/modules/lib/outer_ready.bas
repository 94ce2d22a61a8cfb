' A module used by a used module is set up first: its initializer runs before the initializer of the
' module that uses it.
'#Uses "inner_ready.bas"
Public OuterValue As Long

Private Sub Main
    Debug.Print "outer sees"; InnerValue
    OuterValue = InnerValue + 1
End Sub
