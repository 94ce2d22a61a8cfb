#pragma once
// The callback an engine object uses when the host sets none: a function-pointer callback over the
// five exported default handlers (KZ_CallBackDebugPrint ... KZ_CallBackWindow), and the error box that
// its Notify shows for notification 0.
#include <oaidl.h>

namespace brannoc {

struct ErrorLocation;

// A new default callback object (one reference for the caller), or null when it cannot be made.
IDispatch* CreateDefaultCallBack();

// "[macro#line] line-with-<here>\ndescription" in a task-modal box captioned "Error".
void ShowErrorBox(const ErrorLocation& error);

} // namespace brannoc
