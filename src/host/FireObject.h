#pragma once
// The fire object a host gets from the engine object's Fire: calls a Sub (Call) or a Function (Eval)
// of the loaded macros by name, the name being the first argument, and keeps whether the last call
// succeeded and the last Function's value. Implements IDispatch directly (members Busy 1, Call 2,
// Eval 3, Result 4, Succeeded 5).
#include "values/Variant.h"
#include "host/LateBoundObject.h"
#include <oaidl.h>

namespace brannoc {

class CodeUnit;

class FireObject final : public LateBoundObject<FireObject> {
public:
    enum Member : DISPID { kBusy = 1, kCall = 2, kEval = 3, kResult = 4, kSucceeded = 5 };

    // A new fire object over the engine object (held); the caller owns the one reference.
    static FireObject* Create(CodeUnit& engine, bool debugging);

    HRESULT __stdcall GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) override;
    HRESULT __stdcall Invoke(DISPID member, REFIID id, LCID lcid, WORD flags, DISPPARAMS* parameters,
                             VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

private:
    friend class LateBoundObject<FireObject>;
    FireObject(CodeUnit& engine, bool debugging);
    ~FireObject();

    HRESULT Get(DISPID member, WORD flags, const DISPPARAMS& parameters, VARIANT* result);
    HRESULT CallByName(DISPID member, WORD flags, const DISPPARAMS& parameters, VARIANT* result,
                       EXCEPINFO* exception, UINT* argumentError);
    // The host call itself, inside the entry guard.
    HRESULT CallInsideEngine(bool function, const DISPPARAMS& parameters, EXCEPINFO* exception,
                             UINT* argumentError);

    CodeUnit& m_engine;
    bool m_debugging;
    bool m_busy = false;
    bool m_succeeded = false;
    Variant m_result;
};

} // namespace brannoc
