'#Reference {0BAD0BAD-0000-0000-C000-000000000046}#1.0#0#none.tlb#Nothing
'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation
' A library that is not registered: the reference cannot be added and the module does not load.
Sub Main
    Debug.Print "not run"
End Sub
