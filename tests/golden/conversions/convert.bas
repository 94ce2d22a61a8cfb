' The C... conversions: kinds, rounding half to even, Error values as their numbers.
Sub Main
    Debug.Print CInt(2.5); CInt(3.5); CInt(-2.5); CLng(1.5); CLng("12"); CByte(255); CSng(1.5); CDbl("2.25"); CCur(1.23456)
    Debug.Print CBool(0); CBool(-3); CBool("True"); CVar(Null); TypeName(CDec(1)); VarType(CVDate(1)); CDate("36526")
    Debug.Print CInt(CVErr(12)); CBool(CVErr(0)); CStr(CVErr(2001)); "["; CStr(Null); "]"; CStr(12); CStr(True)
    Debug.Print CVErr(2001); CVErr(CVErr(7)); IsError(CVErr(0))
    Debug.Print CInt(40000)
    Debug.Print "not reached"
End Sub
