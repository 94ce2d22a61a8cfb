'#Uses "Account.cls"
' Two accounts of the class module Account.cls: properties, methods, a With block, a chained call,
' a trapped error from the class, and the terminators when the objects go.
'   bin/bbrun examples/accounts.bas
Sub Main
    Dim alice As New Account
    Dim bob As Account
    Set bob = New Account
    alice.Owner = "Alice"
    bob.Owner = "Bob"
    With alice
        .Deposit 100
        .Deposit 25.5
        Debug.Print .Owner & " has " & .Balance & " after " & .Moves & " deposits"
    End With
    Debug.Print "Bob now has " & alice.TransferTo(bob, 40).Balance
    On Error Resume Next
    bob.Withdraw 1000
    If Err.Number <> 0 Then Debug.Print "refused: " & Err.Description
    On Error GoTo 0
    Dim anyAccount As Object
    Set anyAccount = bob
    Debug.Print anyAccount.Owner & " made " & anyAccount.Moves & " moves"
    Set bob = Nothing
    Set anyAccount = Nothing
    Debug.Print "done"
End Sub
