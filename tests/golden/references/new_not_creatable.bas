'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation
' New with a library's type that is not a creatable class.
Sub Main
    Dim f As Object
    Set f = New stdole.IFontDisp
End Sub
