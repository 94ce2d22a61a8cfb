' A file whose first line that is not a comment begins with VERSION is a class module. Starting it
' makes its default instance (Class_Initialize runs at once); unloading it after the run ends that
' instance (Class_Terminate runs).
VERSION 1.0 CLASS
BEGIN
  MultiUse = -1
END
Attribute VB_Name = "Started"
Private m_calls As Integer

Private Sub Class_Initialize()
    m_calls = m_calls + 1
    Debug.Print "initialized"; m_calls
End Sub

Private Sub Class_Terminate()
    Debug.Print "terminated"; m_calls
End Sub
