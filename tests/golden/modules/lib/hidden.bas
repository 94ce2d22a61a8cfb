' Reached two '#Uses away; its private items stay its own.
Private Const Secret = 99
Const AlsoPrivate = 98
Dim notShared As Integer
Public Const Depth = 3
