' Scripting.Dictionary driven late-bound: methods, properties, the default member, named and
' optional arguments, For Each over the object and over an array it gives back.
Sub Main
    Dim d As Object
    Set d = CreateObject("Scripting.Dictionary")
    Debug.Print TypeName(d)
    d.Add "one", 1
    d.Add Key:="two", Item:=2
    d.Add Item:="III", Key:="three"
    d("four") = 4
    Debug.Print d.Count; d.Exists("two"); d.Exists("five")
    Debug.Print d("two"); d.Item("three"); d("four")
    d.Item("one") = 11
    Debug.Print d("one")
    Dim k
    For Each k In d
        Debug.Print k; "="; d(k)
    Next
    Dim items
    items = d.Items
    Debug.Print UBound(items)
    For Each k In d.Keys
        Debug.Print k;
    Next
    Debug.Print
    d.Remove "two"
    Debug.Print d.Count; d.Exists("two")
    Dim t As Object
    Set t = CreateObject("Scripting.Dictionary")
    t.CompareMode = 1
    t.Add "Key", 1
    Debug.Print t.Exists("KEY"); t.CompareMode
    ' A Sub of the object called as a statement gives no result.
    d.RemoveAll
    Debug.Print d.Count
    ' The Object variable with arguments reaches the default member.
    Dim o As Object
    Set o = d
    o("x") = "ex"
    Debug.Print o("x")
    Debug.Print "end"
End Sub
