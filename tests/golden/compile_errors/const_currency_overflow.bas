' A Currency Const must fit Currency's range once rounded to four decimals.
Const Largest As Currency = 922337203685477
Const TooLarge As Currency = 1E300

Sub Main
    Debug.Print "never printed"
End Sub
