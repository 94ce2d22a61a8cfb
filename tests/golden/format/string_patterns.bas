' String patterns: @ and & positions filled from the right (from the left after !), < and > for case
Sub Main
    Debug.Print Format("AbC", "@@@@@"); Format("AbC", "!@@@@@"); Format("AbCd", "@@"); Format("AbCd", "!@@")
    Debug.Print Format("AbC", ">@@@"); Format("AbC", "<@@@"); Format("AbC", "&&&&&"); Format("ab", "!&&&&-")
    Debug.Print Format("", "@;""empty"""); Format("hello world", "@@@@@-@@"); Format("ab", "(@@@@)")
    Debug.Print Format(12, "@@@@"); Format("abc", "\@@"); Format(Null, "@@")
    Debug.Print "end"
End Sub
