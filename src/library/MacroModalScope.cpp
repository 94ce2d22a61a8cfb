#include "library/MacroModalScope.h"

#include "exec/Interpreter.h"

namespace brannoc {

namespace {

thread_local int t_depth = 0;
thread_local HWND t_owner = nullptr;

} // namespace

MacroModalScope::MacroModalScope()
{
    if (t_depth++ > 0) {
        // A box shown from inside another macro dialog (a dialog function's MsgBox) belongs to the window
        // that is up, so that it comes above it; without one the level's owner is kept.
        HWND active = GetActiveWindow();
        m_owner = active ? active : t_owner;
        return;
    }
    Interpreter* machine = Interpreter::Current();
    void* chosen = nullptr;
    t_owner = machine && machine->Host().ChooseModalOwner(chosen) ? static_cast<HWND>(chosen) : GetActiveWindow();
    m_owner = t_owner;
    if (machine) {
        m_notified = &machine->Host();
        m_notified->Notify(InterpreterHost::kNotifyModalOpened);
    }
}

MacroModalScope::~MacroModalScope()
{
    if (--t_depth > 0)
        return;
    t_owner = nullptr;
    if (m_notified)
        m_notified->Notify(InterpreterHost::kNotifyModalClosed);
}

} // namespace brannoc
