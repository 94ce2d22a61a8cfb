' Empty and Null are constants in module-level Const declarations as they are in expressions.
Const Blank = Empty, Unknown = Null, Joined = Null & "x", Sum = Empty + 1

Sub Main
    Debug.Print IsEmpty(Blank); IsNull(Unknown); Joined; Sum; TypeName(Sum)
    Debug.Print "end"
End Sub
