#pragma once
// An automation object for tests that records every Invoke (member, flags, locale, arguments in
// IDispatch order, named identifiers) and answers a few members.
#include <oaidl.h>
#include "support/TestComObject.h"

#include <vector>

namespace brannoc::testing {

// Members: Value (property get/let/set), Add(a, b) (method), Items (no parameters: an array of three
// Longs), Inner (no parameters: another object whose default member takes an index), Fail (raises an
// exception), Picky (refuses its argument's type), Store (a method without a value: refuses to give a
// result, as servers built from type information do).
class FakeObject final : public TestDispatch {
public:
    enum Id : DISPID { kValue = 1, kAdd, kItems, kInner, kFail, kPicky, kStore, kParamA = 100, kParamB };

    struct Call {
        DISPID member;
        WORD flags;
        LCID locale;
        std::vector<VARIANT> arguments;   // in IDispatch order, shallow copies
        std::vector<DISPID> named;
        bool resultWanted;
    };
    std::vector<Call> calls;
    std::vector<LCID> nameLocales;
    long value = 7;
    FakeObject* inner = nullptr;
    std::vector<long> innerIndexes;

    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override
    {
        nameLocales.push_back(locale);
        static const struct {
            const wchar_t* name;
            DISPID id;
        } s_names[] = {{L"Value", kValue}, {L"Add", kAdd},   {L"Items", kItems}, {L"Inner", kInner},
                       {L"Fail", kFail},   {L"Picky", kPicky}, {L"Store", kStore}, {L"a", kParamA},
                       {L"b", kParamB}};
        HRESULT status = S_OK;
        for (UINT i = 0; i < count; ++i) {
            ids[i] = DISPID_UNKNOWN;
            for (const auto& entry : s_names) {
                if (lstrcmpiW(entry.name, names[i]) == 0)
                    ids[i] = entry.id;
            }
            if (ids[i] == DISPID_UNKNOWN)
                status = DISP_E_UNKNOWNNAME;
        }
        return status;
    }
    HRESULT __stdcall Invoke(DISPID member, REFIID, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                             EXCEPINFO* exception, UINT* argumentError) override
    {
        Call call{member, flags, locale, {}, {}, result != nullptr};
        for (UINT i = 0; i < parameters->cArgs; ++i)
            call.arguments.push_back(parameters->rgvarg[i]);
        for (UINT i = 0; i < parameters->cNamedArgs; ++i)
            call.named.push_back(parameters->rgdispidNamedArgs[i]);
        calls.push_back(call);
        // A caller that wants no result (a call statement) gets none: what a member gives goes into a
        // scratch value, cleared afterwards.
        VARIANT scratch;
        VariantInit(&scratch);
        const HRESULT status = Answer(member, flags, parameters, result ? result : &scratch, result != nullptr,
                                      exception, argumentError);
        VariantClear(&scratch);
        return status;
    }

private:
    HRESULT Answer(DISPID member, WORD flags, DISPPARAMS* parameters, VARIANT* result, bool resultWanted,
                   EXCEPINFO* exception, UINT* argumentError)
    {
        auto longAt = [&](UINT i) {
            VARIANT copy;
            VariantInit(&copy);
            VariantChangeType(&copy, &parameters->rgvarg[i], 0, VT_I4);
            return copy.lVal;
        };
        switch (member) {
        case kValue:
            if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
                value = longAt(0);
                return S_OK;
            }
            if (parameters->cArgs != 0)
                return DISP_E_BADPARAMCOUNT;
            result->vt = VT_I4;
            result->lVal = value;
            return S_OK;
        case kAdd:
            if (parameters->cArgs != 2)
                return DISP_E_BADPARAMCOUNT;
            result->vt = VT_I4;
            // Named a = 100 and b = 101 may come in any order; positional ones arrive last first.
            result->lVal = longAt(0) * 10 + longAt(1);
            return S_OK;
        case kItems: {
            if (parameters->cArgs != 0)
                return DISP_E_BADPARAMCOUNT;
            SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 0, 3);
            for (LONG i = 0; i < 3; ++i) {
                LONG item = 10 * (i + 1);
                SafeArrayPutElement(array, &i, &item);
            }
            result->vt = VT_ARRAY | VT_I4;
            result->parray = array;
            return S_OK;
        }
        case kInner:
            if (parameters->cArgs != 0)
                return DISP_E_BADPARAMCOUNT;
            result->vt = VT_DISPATCH;
            result->pdispVal = inner;
            inner->AddRef();
            return S_OK;
        case DISPID_VALUE:
            innerIndexes.push_back(longAt(0));
            result->vt = VT_I4;
            result->lVal = 1000 + longAt(0);
            return S_OK;
        case kFail:
            *exception = EXCEPINFO{};
            exception->scode = static_cast<SCODE>(0x80040123);
            exception->bstrDescription = SysAllocString(L"server failed");
            return DISP_E_EXCEPTION;
        case kStore:
            if (resultWanted)
                return DISP_E_TYPEMISMATCH;
            value = parameters->cArgs == 1 ? longAt(0) : value;
            return S_OK;
        case kPicky:
            *argumentError = 0;
            return DISP_E_TYPEMISMATCH;
        default:
            return DISP_E_MEMBERNOTFOUND;
        }
    }
};

} // namespace brannoc::testing
