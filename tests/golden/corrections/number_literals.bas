' Number literals read the same in expressions and in Const declarations.
Const Big = 100000000000000000000
Const JustPastLong = 2147483648
Const WithD = 1.5D3
Sub Main
    Const LocalBig = 100000000000000000000
    Debug.Print 100000000000000000000; Big; LocalBig
    Debug.Print 2147483648; JustPastLong; 1.5D3; WithD
    Debug.Print 32767; 32768; &HFFFF; &HFFFF&; &O17; 1E308
End Sub
