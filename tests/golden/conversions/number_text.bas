' Numbers as text (Hex, Oct, Str) and text as numbers (Val).
Sub Main
    Debug.Print Hex(255); Hex(-1); Hex(0); Hex(2.5); Oct(8); Oct(-1)
    Debug.Print "["; Str(5); "]["; Str(-5); "]["; Str(0.25); "]["; Str(-0.5); "]["; Str(0); "]"
    Debug.Print Val("&H10"); Val("  1 2 3"); Val(" 12 34abc"); Val("&HFF"); Val("&HFFFF"); Val("&O17"); Val("&HFFFF&"); Val("&H1 0&")
    Debug.Print Val("1e3"); Val("1d2"); Val("-1.5e-1x"); Val("1e"); Val("1.2.3"); Val(".5"); Val("abc"); Val("")
    Debug.Print "done"
End Sub
