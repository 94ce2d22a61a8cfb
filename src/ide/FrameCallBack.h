#pragma once
// The callback object the frame installs on its engine object: the engine reads the macros of open
// sheets through it and reports Debug.Print output, notifications and its other requests to the frame.
#include <windows.h>
#include <oaidl.h>

namespace brannoc::ide {

class EditorFrame;

// A dispatch object serving `frame`, or null when it cannot be made. The caller owns the reference;
// DetachFrameCallBack must be called before the frame goes, since the engine may hold the object longer.
IDispatch* CreateFrameCallBack(EditorFrame& frame);
void DetachFrameCallBack(IDispatch* callBack);

} // namespace brannoc::ide
