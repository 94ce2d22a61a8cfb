'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation
' As New makes only classes of the macro on first use: a library's class is refused, never left Nothing.
Sub Main
    Dim f As New stdole.StdFont
    Debug.Print f Is Nothing
End Sub
