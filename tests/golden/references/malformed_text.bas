'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0 stdole2.tlb
' A reference text whose version part is followed by something other than "#".
Sub Main
End Sub
