#pragma once
// Calls into the host's callback object. Members are looked up by name at each call; the engine lock
// is given up for the duration of the call.
#include "values/ComRef.h"

#include <oaidl.h>
#include <string>

namespace brannoc {

class HostCallBack final {
public:
    // The member's DISPID on the callback, or DISPID_UNKNOWN when it has no such member.
    static DISPID Find(IDispatch* callBack, const wchar_t* name);

    static bool DebugPrint(IDispatch* callBack, IDispatch* engine, const std::wstring& text);
    static bool DebugTrace(IDispatch* callBack, IDispatch* engine, short kind, const std::wstring& text);
    static bool Notify(IDispatch* callBack, IDispatch* engine, short code);
    static bool DoEvents(IDispatch* callBack, IDispatch* engine);
    // After a host call into a macro that the call itself left running: the engine stops the run next.
    static bool PostMacroRun(IDispatch* callBack, IDispatch* engine);
    // Offers the host to write the event procedure handlerName (an event arrived without one); oneEvent
    // tells a sink that takes a single event of its source from one that takes them all.
    static bool EditEventCode(IDispatch* callBack, IDispatch* engine, const std::wstring& handlerName, bool oneEvent);
    // The text of the named macro; false when the member is missing or answers no text.
    static bool ReadMacro(IDispatch* callBack, IDispatch* engine, const std::wstring& name, std::wstring& text);
    // The host's name for a macro name (base: the name it is relative to); false when the member is
    // missing or fails, and the name is then used unchanged.
    static bool MapMacroName(IDispatch* callBack, IDispatch* engine, const std::wstring& name,
                             const std::wstring& base, std::wstring& mapped);

    // Whether the engine is to apply the module's '#Reference lines; false when the host set the
    // references itself. True when the member is missing or fails.
    static bool SetMacroReferences(IDispatch* callBack, IDispatch* engine, const std::wstring& macroName);

    // Whether the host accepts the header of a form module (its text up to the end of the header) and has
    // built the form's object. True when the member is missing or fails.
    static bool ParseMacroProperties(IDispatch* callBack, IDispatch* engine, const std::wstring& macroName,
                                     const std::wstring& properties);
    // The host's object for a new instance of a form module. Absent when the callback has no such
    // member; otherwise object receives the answer (null for Nothing or a failed call).
    enum class InstanceAnswer { Absent, Answered };
    static InstanceAnswer NewMacroInstance(IDispatch* callBack, IDispatch* engine, const std::wstring& macroName,
                                           ComRef<IDispatch>& object);

    // The host's window for the engine's dialogs (its Window property); false when the member is missing
    // or fails.
    static bool Window(IDispatch* callBack, long& window);
    // Offers the owner chosen for a modal dialog to the host, which may replace it; false when the member
    // is missing or fails (the owner then stands).
    static bool OverrideModalWindowOwner(IDispatch* callBack, IDispatch* engine, long& owner);

private:
    // Invokes a member by name with the given arguments (in declaration order).
    static bool InvokeByName(IDispatch* callBack, const wchar_t* name, VARIANT* arguments, UINT count,
                             VARIANT* result, WORD kind = DISPATCH_METHOD);
};

} // namespace brannoc
