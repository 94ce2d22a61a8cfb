' A date literal is "#" followed at once by anything but a space (a tab too), up to the next "#".
Sub Main
    Debug.Print #1/2/2003#
    Debug.Print #	1/2/2003#
    Debug.Print Year(#12/31/1999 23:59:59#); Month(#	2/3/2004#)
End Sub
