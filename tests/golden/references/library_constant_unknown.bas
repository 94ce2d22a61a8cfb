'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation
' A qualified name that the referenced library has no constant for.
Sub Main
    Debug.Print stdole.NoSuchConstant
End Sub
