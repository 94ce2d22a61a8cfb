'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation
' The standard OLE Automation library by reference: its types in declarations, qualified by the
' library's name or not, and its enumerations' constants by name.
Dim picture As stdole.IPictureDisp
Sub Main
    Dim f As stdole.IFontDisp
    Dim p As IPictureDisp
    Debug.Print TypeName(f); TypeName(p); TypeName(picture)
    Debug.Print Unchecked; Checked; Gray
    Dim state As Long
    state = Gray
    Debug.Print state = 2
End Sub
