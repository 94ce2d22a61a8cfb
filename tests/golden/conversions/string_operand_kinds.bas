' A String operand of arithmetic is read as a Long (an Integer when it fits) only when it is decimal
' digits after an optional sign (or hexadecimal or octal text); with a blank or a point it is a Double.
Sub Main
    Dim v As Variant
    For Each v In Array("12", "70000", " 12", "12 ", "-5", "+5", "-32768", "-32769", "- 5", "1.5", "&HFFFF", "&O17", "&H10000")
        Debug.Print "["; v; "] "; TypeName(v + 0); " "; v + 0
    Next v
    Debug.Print IsNumeric(" 12"); IsNumeric("-5"); IsNumeric("12a")
End Sub
