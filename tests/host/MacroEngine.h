#pragma once
// An engine object with a fake callback serving macros from memory, and late-bound calls with their
// arguments given first to last: shared by the tests of fire objects, handlers and event sinks.
#include "brannoc.h"
#include "host/FakeCallBack.h"
#include "values/Variant.h"
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace brannoc::testing {

class MacroEngine {
public:
    MacroEngine() : unit(static_cast<_CodeUnit*>(KZ_CreateCodeUnit())) { unit->SetCallBack(&callBack); }
    ~MacroEngine()
    {
        for (IDispatch* object : kept)
            object->Release();
        VARIANT_BOOL ignored;
        unit->HaltAll(&ignored);
        unit->SetCallBack(nullptr);
        unit->Release();
    }
    MacroEngine(const MacroEngine&) = delete;
    MacroEngine& operator=(const MacroEngine&) = delete;

    bool Load(const wchar_t* name, const std::wstring& text)
    {
        callBack.macros[name] = text;
        BSTR held = SysAllocString(name);
        VARIANT_BOOL loaded = VARIANT_FALSE;
        unit->Load(held, &loaded);
        SysFreeString(held);
        return loaded == VARIANT_TRUE;
    }
    // A handler for the prototype (null when refused), released with the engine.
    IDispatch* CreateHandler(const wchar_t* prototype)
    {
        BSTR text = SysAllocString(prototype);
        IDispatch* handler = nullptr;
        EXPECT_EQ(S_OK, unit->CreateHandler(text, &handler));
        SysFreeString(text);
        return Keep(handler);
    }
    // Releases the object (a handler, a fire object) with the engine, before the engine goes.
    IDispatch* Keep(IDispatch* object)
    {
        if (object)
            kept.push_back(object);
        return object;
    }
    // Turns the API trace on (the callback offers DebugTrace, the trace switch is set) or off (the
    // switch cleared; the lines written stay in the callback).
    void TraceApiCalls(bool on = true)
    {
        if (on)
            callBack.offerTrace = true;
        VARIANT_BOOL ignored = VARIANT_FALSE;
        unit->Run(static_cast<short>(on ? 0x8040 : 0x8000), &ignored);
    }
    bool IsIdle()
    {
        VARIANT_BOOL idle = VARIANT_FALSE;
        unit->get_IsIdle(&idle);
        return idle == VARIANT_TRUE;
    }
    // Serves this thread's messages until the host has heard notification `code` `count` times or
    // `limit` ms have passed: an idle notification of a run that ended inside a host call comes later,
    // from the thread's timer window.
    void PumpUntilNotified(short code, int count = 1, DWORD limit = 5000)
    {
        const DWORD start = GetTickCount();
        while (callBack.Count(code) < count && GetTickCount() - start < limit) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageW(&message);
        }
    }

    _CodeUnit* unit;
    FakeCallBack callBack;
    std::vector<IDispatch*> kept;
};

// One late-bound call: the arguments first to last (IDispatch wants them last to first), named ones
// with their DISPIDs. Keeps the exception and the argument-error index it answered.
struct LateCall {
    std::vector<Variant> arguments;
    std::vector<DISPID> names;
    EXCEPINFO exception{};
    UINT argumentError = 0;
    Variant result;

    LateCall& Add(Variant value)
    {
        arguments.push_back(std::move(value));
        return *this;
    }
    LateCall& Text(const wchar_t* text)
    {
        Variant value;
        value.Raw().vt = VT_BSTR;
        value.Raw().bstrVal = SysAllocString(text);
        return Add(std::move(value));
    }
    LateCall& Long(long number)
    {
        Variant value;
        value.Raw().vt = VT_I4;
        value.Raw().lVal = number;
        return Add(std::move(value));
    }
    LateCall& Reference(VARIANT* target)
    {
        Variant value;
        value.Raw().vt = VT_BYREF | VT_VARIANT;
        value.Raw().pvarVal = target;
        return Add(std::move(value));
    }
    // The last `count` arguments added are named, with these DISPIDs (in the order added).
    LateCall& Named(std::initializer_list<DISPID> ids)
    {
        names.assign(ids.begin(), ids.end());
        return *this;
    }
    HRESULT Invoke(IDispatch* object, DISPID member, WORD flags = DISPATCH_METHOD, bool wantResult = true)
    {
        // Named arguments come first in rgvarg, then the positional ones last to first.
        const std::size_t named = names.size();
        const std::size_t positional = arguments.size() - named;
        std::vector<VARIANT> slots;
        std::vector<DISPID> ids;
        for (std::size_t i = 0; i < named; ++i) {
            slots.push_back(arguments[positional + i].Raw());
            ids.push_back(names[i]);
        }
        for (std::size_t i = positional; i > 0; --i)
            slots.push_back(arguments[i - 1].Raw());
        DISPPARAMS parameters{slots.data(), ids.data(), static_cast<UINT>(slots.size()), static_cast<UINT>(named)};
        ClearException();
        argumentError = 0;
        result.Clear();
        return object->Invoke(member, IID_NULL, 0x409, flags, &parameters, wantResult ? &result.Raw() : nullptr,
                              &exception, &argumentError);
    }
    std::wstring Description() const
    {
        return exception.bstrDescription ? std::wstring(exception.bstrDescription) : std::wstring();
    }
    void ClearException()
    {
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrHelpFile);
        exception = EXCEPINFO{};
    }
    ~LateCall() { ClearException(); }
};

} // namespace brannoc::testing
