#pragma once
// The modal level of a thread's macro dialogs and message boxes. The outermost one chooses its owner
// window through the running engine's host and tells the host that a dialog of a macro opened
// (notification 6) and, when it has closed, that it closed (7); nested ones add nothing of that.
#include <windows.h>

namespace brannoc {

class InterpreterHost;

class MacroModalScope final {
public:
    // Made inside the engine, before the dialog is shown; ended inside the engine after it has closed.
    MacroModalScope();
    ~MacroModalScope();
    MacroModalScope(const MacroModalScope&) = delete;
    MacroModalScope& operator=(const MacroModalScope&) = delete;

    // The owner window for this level's dialog (null for none).
    HWND Owner() const { return m_owner; }

private:
    InterpreterHost* m_notified = nullptr;
    HWND m_owner = nullptr;
};

} // namespace brannoc
