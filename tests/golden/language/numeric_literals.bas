' Hexadecimal and octal literals: values that fit in 16 bits are Integers (sign-extended) unless the
' Long suffix follows; decimal literals take the smallest of Integer, Long and Double; the same rules
' hold in Const declarations. Octal literals take the digits 8 and 9 too, each merged into the value
' shifted by three bits.
Const OctalNine = &O19
Const HexInteger = &H8000
Const HexLong = &H8000&
Const OctalLong = &O177777&
Const Wide = &HFFFFFFFF

Sub Main
    Debug.Print &H8000; &H8000&; &HFFFF; &HFFFF&; &H0FFFF; &H10000; &Hff
    Debug.Print &O17; &O177777; &O177777&; &O37777777777
    Debug.Print &O8; &O9; &O19; &O77; OctalNine
    Debug.Print 32767; 32768; 2147483647; 2147483648
    Debug.Print HexInteger; HexLong; OctalLong; Wide
    Debug.Print TypeName(&HFFFF&); TypeName(HexInteger); TypeName(2147483648)
    Debug.Print "end"
End Sub
