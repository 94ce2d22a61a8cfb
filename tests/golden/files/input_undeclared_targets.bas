' Input # and Line Input # fill undeclared names as an assignment would: each becomes a local of its
' letter's default type (DefStr makes t a String).
DefStr T
Sub Main
    Open "input_undeclared_targets.txt" For Output As #1
    Print #1, "7, abc, 2.5"
    Print #1, "  whole line  "
    Close #1
    Open "input_undeclared_targets.txt" For Input As #1
    Input #1, number, word, half#
    Line Input #1, text
    Close #1
    Kill "input_undeclared_targets.txt"
    Debug.Print number; TypeName(number); word; half; TypeName(half)
    Debug.Print "[" & text & "]"; TypeName(text)
    Debug.Print "end"
End Sub
