'#Uses "lib/Box.cls"
' A Let whose value is an object assigns the object's default member's value (a folder's path), into
' every kind of Variant place; Set assigns the object itself.
Type Holder
    v As Variant
End Type

Sub Main
    Dim folder As Object
    Set folder = CreateObject("Scripting.FileSystemObject").GetFolder("C:\windows")
    Dim plain As Variant
    plain = folder
    Debug.Print "variable: "; TypeName(plain)
    Dim h As Holder
    h.v = folder
    Debug.Print "record field: "; TypeName(h.v)
    Dim hs(2) As Holder
    hs(1).v = folder
    Debug.Print "field of an element: "; TypeName(hs(1).v)
    Dim cells(1) As Variant
    cells(0) = folder
    Debug.Print "element: "; TypeName(cells(0))
    Set h.v = folder
    Debug.Print "record field after Set: "; TypeName(h.v)

    Dim b As New Box
    b.Value = folder
    b.Item = folder
    Debug.Print "class variable: "; TypeName(b.Item)

    Dim late As Object
    Set late = New Box
    late.Value = folder
    late.Item = folder
    Debug.Print "late-bound class variable: "; TypeName(late.Item)
    Set late.Item = folder
    Debug.Print "late-bound class variable after Set: "; TypeName(late.Item)
End Sub
