' Write # always ends its line: a list may not end with ','.
Sub Main
    Write #1, 1,
End Sub
