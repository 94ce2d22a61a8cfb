' LastDllError can only be read
Sub Main
    Err.LastDllError = 1
End Sub
