'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation
' A referenced library's enumeration as a type is a Long, in module-level and here declarations, as a
' parameter and as an array's element type; its members by name, qualified by the library's name, or by
' the library's and the enumeration's names.
Dim kept As stdole.OLE_TRISTATE

Function Flip(state As OLE_TRISTATE) As OLE_TRISTATE
    If state = Checked Then Flip = Unchecked Else Flip = Checked
End Function

Sub Main
    Dim here As stdole.OLE_TRISTATE
    Dim bare As OLE_TRISTATE
    Dim several(2) As stdole.OLE_TRISTATE
    Debug.Print TypeName(kept); " "; TypeName(here); " "; TypeName(bare); " "; TypeName(several)
    here = stdole.Gray
    bare = stdole.OLE_TRISTATE.Checked
    several(1) = Gray
    Debug.Print here; bare; several(1); Flip(bare); Flip(Unchecked)
    kept = 70000
    Debug.Print kept
    Debug.Print stdole.Monochrome; stdole.LoadPictureConstants.Color
End Sub
