' A literal too large for a Double is an invalid numeric constant, as it is in a Const.
Sub Main
    Debug.Print 1E309
End Sub
