#pragma once
// Host callbacks over plain function pointers, for hosts that do not implement IDispatch: an adapter
// object whose virtual functions, in the order of the callback's description, call the host's
// functions (user data last) or, where a pointer is null, forward to a fallback callback.
#include "brannoc.h"
#include "values/ComRef.h"

namespace brannoc {

// The five-member callback. The slot order is the description's: DebugPrint, DoEvents, Notify,
// ReadMacro, Window. String arguments arrive as ANSI text (the type is made with OA_CreateTypeA).
class FunctionCallBack final {
public:
    FunctionCallBack(IDispatch* fallback, const CB_FUNCTIONS& functions, void* userData);

    virtual void __stdcall DebugPrint(IDispatch* engine, BSTR text);
    virtual void __stdcall DoEvents(IDispatch* engine);
    virtual void __stdcall Notify(IDispatch* engine, short code);
    // The macro's text as an ordinary BSTR made from the host's ANSI answer (which is freed here).
    virtual BSTR __stdcall ReadMacro(IDispatch* engine, BSTR name);
    virtual long __stdcall Window();

    ComRef<IDispatch> m_fallback;
    CB_FUNCTIONS m_functions;
    void* m_userData;
};

// The callback with name mapping; slot order DebugPrint, DoEvents, MapMacroName, Notify, ReadMacro, Window.
class FunctionCallBack2 final {
public:
    FunctionCallBack2(IDispatch* fallback, const CB_FUNCTIONS2& functions, void* userData);

    virtual void __stdcall DebugPrint(IDispatch* engine, BSTR text);
    virtual void __stdcall DoEvents(IDispatch* engine);
    virtual BSTR __stdcall MapMacroName(IDispatch* engine, BSTR name, BSTR baseName);
    virtual void __stdcall Notify(IDispatch* engine, short code);
    virtual BSTR __stdcall ReadMacro(IDispatch* engine, BSTR name);
    virtual long __stdcall Window();

    ComRef<IDispatch> m_fallback;
    CB_FUNCTIONS2 m_functions;
    void* m_userData;
};

} // namespace brannoc
