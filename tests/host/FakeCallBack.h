#pragma once
// A host callback for tests of the engine object: serves macro texts from memory and records what the
// engine tells it (printed text, notifications, the error number at each notification 0).
#include "brannoc.h"
#include "support/TestComObject.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace brannoc::testing {

// The host callback: ReadMacro from a map, DebugPrint and Notify recorded. Checks the shape of each
// call: the engine object first, then the member's own arguments.
class FakeCallBack final : public TestDispatch {
public:
    enum Member : DISPID {
        kDebugPrint = 1,
        kNotify,
        kReadMacro,
        kMapMacroName,
        kDebugTrace,
        kDoEvents,
        kPostMacroRun,
        kEditEventCode,
        kWindow,
        kOverrideModalWindowOwner
    };

    // MapMacroName is offered only when a prefix is set; it answers the prefix and the name.
    std::wstring mapPrefix;
    std::vector<std::pair<std::wstring, std::wstring>> mapped;
    // For each mapping, whether the base name came as a null string.
    std::vector<bool> mappedWithoutBase;
    // DebugTrace is offered only when set; each line is recorded as its kind, ":" and its text.
    bool offerTrace = false;
    std::vector<std::wstring> traces;
    // DoEvents is offered only when set; each call is counted and then calls onDoEvents.
    bool offerDoEvents = false;
    int doEventsCalls = 0;
    std::function<void(IDispatch* engine)> onDoEvents;
    // PostMacroRun is offered only when set; each call is counted and then calls onPostMacroRun.
    bool offerPostMacroRun = false;
    int postMacroRunCalls = 0;
    std::function<void(IDispatch* engine)> onPostMacroRun;
    // EditEventCode is offered only when set; each offer is recorded as the handler name, "|" and the flag.
    bool offerEditEventCode = false;
    std::vector<std::wstring> editEventCodes;

    // Window is offered only when set; it answers window (a property get without arguments).
    bool offerWindow = false;
    HWND window = nullptr;
    // OverrideModalWindowOwner is offered only when set; it may change the owner the engine offers.
    std::function<void(long& owner)> onOverrideModalWindowOwner;

    std::map<std::wstring, std::wstring> macros;
    std::vector<std::wstring> printed;
    // Called after each DebugPrint is recorded, with the engine object (tests that re-enter the engine).
    std::function<void(IDispatch* engine)> onDebugPrint;
    std::vector<short> notifications;
    // Called after each notification is recorded, with the engine object and the code.
    std::function<void(IDispatch* engine, short code)> onNotify;
    std::vector<std::wstring> reads;
    std::vector<long> errorNumbers;
    int badCalls = 0;

    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override
    {
        if (count != 1)
            return DISP_E_UNKNOWNNAME;
        std::wstring name = names[0];
        ids[0] = name == L"DebugPrint" ? static_cast<DISPID>(kDebugPrint) : name == L"Notify" ? kNotify
               : name == L"ReadMacro"  ? kReadMacro
               : name == L"MapMacroName" && !mapPrefix.empty() ? kMapMacroName
               : name == L"DebugTrace" && offerTrace ? kDebugTrace
               : name == L"DoEvents" && offerDoEvents ? static_cast<DISPID>(kDoEvents)
               : name == L"PostMacroRun" && offerPostMacroRun ? static_cast<DISPID>(kPostMacroRun)
               : name == L"EditEventCode" && offerEditEventCode ? static_cast<DISPID>(kEditEventCode)
               : name == L"Window" && offerWindow ? static_cast<DISPID>(kWindow)
               : name == L"OverrideModalWindowOwner" && onOverrideModalWindowOwner
                   ? static_cast<DISPID>(kOverrideModalWindowOwner)
                                       : DISPID_UNKNOWN;
        return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
    }
    HRESULT __stdcall Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                             EXCEPINFO*, UINT*) override
    {
        if (member == kMapMacroName) {
            if (parameters->cArgs != 3 || parameters->rgvarg[2].vt != VT_DISPATCH) {
                ++badCalls;
                return E_INVALIDARG;
            }
            std::wstring name(parameters->rgvarg[1].bstrVal, SysStringLen(parameters->rgvarg[1].bstrVal));
            std::wstring base(parameters->rgvarg[0].bstrVal, SysStringLen(parameters->rgvarg[0].bstrVal));
            mapped.emplace_back(name, base);
            mappedWithoutBase.push_back(parameters->rgvarg[0].vt == VT_BSTR && !parameters->rgvarg[0].bstrVal);
            VariantInit(result);
            result->vt = VT_BSTR;
            result->bstrVal = SysAllocString((mapPrefix + name).c_str());
            return S_OK;
        }
        if (member == kDebugTrace && parameters->cArgs == 3) {
            traces.push_back(std::to_wstring(parameters->rgvarg[1].iVal) + L":" +
                             std::wstring(parameters->rgvarg[0].bstrVal, SysStringLen(parameters->rgvarg[0].bstrVal)));
            return S_OK;
        }
        if (member == kPostMacroRun) {
            if (flags != DISPATCH_METHOD || parameters->cArgs != 1 || parameters->rgvarg[0].vt != VT_DISPATCH) {
                ++badCalls;
                return E_INVALIDARG;
            }
            ++postMacroRunCalls;
            if (onPostMacroRun)
                onPostMacroRun(parameters->rgvarg[0].pdispVal);
            return S_OK;
        }
        if (member == kEditEventCode) {
            if (flags != DISPATCH_METHOD || parameters->cArgs != 3 || parameters->rgvarg[2].vt != VT_DISPATCH ||
                parameters->rgvarg[1].vt != VT_BSTR || parameters->rgvarg[0].vt != VT_BOOL) {
                ++badCalls;
                return E_INVALIDARG;
            }
            editEventCodes.push_back(std::wstring(parameters->rgvarg[1].bstrVal, SysStringLen(parameters->rgvarg[1].bstrVal)) +
                                     (parameters->rgvarg[0].boolVal ? L"|True" : L"|False"));
            return S_OK;
        }
        if (member == kWindow) {
            if (!(flags & DISPATCH_PROPERTYGET) || parameters->cArgs != 0 || !result) {
                ++badCalls;
                return E_INVALIDARG;
            }
            VariantInit(result);
            result->vt = VT_I4;
            result->lVal = static_cast<LONG>(reinterpret_cast<LONG_PTR>(window));
            return S_OK;
        }
        if (member == kOverrideModalWindowOwner) {
            if (flags != DISPATCH_METHOD || parameters->cArgs != 2 || parameters->rgvarg[1].vt != VT_DISPATCH ||
                parameters->rgvarg[0].vt != (VT_BYREF | VT_I4)) {
                ++badCalls;
                return E_INVALIDARG;
            }
            long owner = *parameters->rgvarg[0].plVal;
            onOverrideModalWindowOwner(owner);
            *parameters->rgvarg[0].plVal = owner;
            return S_OK;
        }
        if (member == kDoEvents) {
            if (flags != DISPATCH_METHOD || parameters->cArgs != 1 || parameters->rgvarg[0].vt != VT_DISPATCH) {
                ++badCalls;
                return E_INVALIDARG;
            }
            ++doEventsCalls;
            if (onDoEvents)
                onDoEvents(parameters->rgvarg[0].pdispVal);
            return S_OK;
        }
        if (flags != DISPATCH_METHOD || parameters->cArgs != 2 || parameters->rgvarg[1].vt != VT_DISPATCH) {
            ++badCalls;
            return E_INVALIDARG;
        }
        VARIANT& argument = parameters->rgvarg[0];
        switch (member) {
        case kDebugPrint:
            printed.emplace_back(argument.bstrVal, SysStringLen(argument.bstrVal));
            if (onDebugPrint)
                onDebugPrint(parameters->rgvarg[1].pdispVal);
            return S_OK;
        case kNotify:
            notifications.push_back(argument.iVal);
            if (argument.iVal == 0) {
                _CodeUnit* engine = nullptr;
                if (SUCCEEDED(parameters->rgvarg[1].pdispVal->QueryInterface(IID__CodeUnit,
                                                                             reinterpret_cast<void**>(&engine)))) {
                    long number = 0;
                    engine->get_ErrorNumber(&number);
                    errorNumbers.push_back(number);
                    engine->Release();
                }
            }
            if (onNotify)
                onNotify(parameters->rgvarg[1].pdispVal, argument.iVal);
            return S_OK;
        case kReadMacro: {
            std::wstring name(argument.bstrVal, SysStringLen(argument.bstrVal));
            reads.push_back(name);
            auto found = macros.find(name);
            VariantInit(result);
            result->vt = VT_BSTR;
            result->bstrVal = found == macros.end() ? nullptr : SysAllocString(found->second.c_str());
            return S_OK;
        }
        default:
            return DISP_E_MEMBERNOTFOUND;
        }
    }
    // All DebugPrint texts in one.
    std::wstring AllPrinted() const
    {
        std::wstring all;
        for (const std::wstring& text : printed)
            all += text;
        return all;
    }
    int Count(short code) const { return static_cast<int>(std::count(notifications.begin(), notifications.end(), code)); }

private:
};

} // namespace brannoc::testing
