' Left, Right and Mid with their byte forms, at and past the ends of the string.
Sub Main
    Dim s As String, n
    s = "abcdef"
    n = Null
    Debug.Print "Left 3: "; Left(s, 3); " Left 0: "; Left(s, 0); " Left 99: "; Left(s, 99)
    Debug.Print "Right 2: "; Right(s, 2); " Right 99: "; Right(s, 99)
    Debug.Print "Mid 2,3: "; Mid(s, 2, 3); " Mid 4: "; Mid(s, 4); " Mid 7: "; Mid(s, 7); " Mid 99: "; Mid(s, 99)
    Debug.Print "Mid$ 5, 0: "; Mid$(s, 5, 0)
    Debug.Print "Null: "; Left(n, 1); Right(n, 1); Mid(n, 1)
    Debug.Print "LeftB 4: "; LeftB(s, 4); " RightB 2: "; RightB(s, 2); " MidB 3,2: "; MidB(s, 3, 2)
    Debug.Print "LenB of LeftB 3: "; LenB(LeftB(s, 3)); " Len of it: "; Len(LeftB(s, 3))
    Debug.Print "done"
End Sub
