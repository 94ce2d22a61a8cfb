' A module that names the macro that uses it back, by a path of its own.
'#Uses "../uses_renamed_cycle.bas"
Sub Helper
End Sub
