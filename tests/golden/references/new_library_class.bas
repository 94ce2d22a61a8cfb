'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation
' New with a creatable class of a referenced library, qualified by the library's name or not: each New
' makes an object of its own.
Sub Main
    Dim f As Object, g As Object
    Set f = New stdole.StdFont
    Set g = New StdFont
    f.Bold = True
    g.Italic = True
    Debug.Print TypeName(f); f.Bold; g.Bold; f.Italic; g.Italic; f Is g
End Sub
