' A date literal is "#" followed at once by anything but a space, up to the next "#" on the line;
' "# " stays a "#" token.
Sub Main
    Debug.Print #1/2/2003#
    Debug.Print #	1/2/2003#
    Debug.Print Year(#12/31/1999 23:59:59#); Month(#	2/3/2004#)
    Debug.Print # 1/2/2003#
End Sub
