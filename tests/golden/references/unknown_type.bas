'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation
' A qualified type name that the referenced library does not have.
Sub Main
    Dim f As stdole.NoSuchType
End Sub
