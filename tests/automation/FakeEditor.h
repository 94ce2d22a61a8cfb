#pragma once
// A stand-in for the editor component behind the KZBE_ functions: it records every Invoke (dispatch
// number, flags, named identifiers, whether a result was asked for, and the arguments in the caller's
// order, copied) and answers as configured per dispatch number: a Boolean, a text, an object, an
// exception, or a failure that is not an exception. Members without a configured answer give nothing.
#include "support/TestComObject.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace brannoc::testing {

class FakeEditor final : public TestDispatch {
public:
    struct Argument {
        VARTYPE type = VT_EMPTY;
        std::wstring text;              // VT_BSTR
        VARIANT_BOOL flag = 0;          // VT_BOOL
        IDispatch* object = nullptr;    // VT_DISPATCH (not held)
    };
    struct Call {
        DISPID member = 0;
        WORD flags = 0;
        std::vector<Argument> arguments;   // first argument first
        std::vector<DISPID> named;
        bool resultWanted = false;
    };
    // What a raised exception carries.
    struct Raised {
        bool withTexts = true;   // source, description and help file; else only the status
    };

    std::vector<Call> calls;
    std::map<DISPID, VARIANT_BOOL> flagAnswers;
    std::map<DISPID, std::wstring> textAnswers;
    std::map<DISPID, IDispatch*> objectAnswers;
    std::map<DISPID, Raised> raising;
    std::set<DISPID> failing;   // answer DISP_E_MEMBERNOTFOUND

    const Call& LastCall() const { return calls.back(); }

    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

    HRESULT __stdcall Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                             EXCEPINFO* exception, UINT*) override
    {
        Record(member, flags, *parameters, result != nullptr);
        if (auto raised = raising.find(member); raised != raising.end())
            return Raise(raised->second, exception);
        if (failing.count(member))
            return DISP_E_MEMBERNOTFOUND;
        if (result)
            Answer(member, *result);
        return S_OK;
    }

private:
    void Record(DISPID member, WORD flags, const DISPPARAMS& parameters, bool resultWanted)
    {
        Call call;
        call.member = member;
        call.flags = flags;
        call.resultWanted = resultWanted;
        for (UINT i = parameters.cArgs; i-- > 0;)
            call.arguments.push_back(Copied(parameters.rgvarg[i]));
        for (UINT i = 0; i < parameters.cNamedArgs; ++i)
            call.named.push_back(parameters.rgdispidNamedArgs[i]);
        calls.push_back(call);
    }

    static Argument Copied(const VARIANT& value)
    {
        Argument argument;
        argument.type = value.vt;
        if (value.vt == VT_BSTR)
            argument.text.assign(value.bstrVal, SysStringLen(value.bstrVal));
        else if (value.vt == VT_BOOL)
            argument.flag = value.boolVal;
        else if (value.vt == VT_DISPATCH)
            argument.object = value.pdispVal;
        return argument;
    }

    static HRESULT Raise(const Raised& raised, EXCEPINFO* exception)
    {
        *exception = EXCEPINFO{};
        exception->scode = static_cast<SCODE>(0x80040200);
        if (raised.withTexts) {
            exception->bstrSource = SysAllocString(L"Brannoc.BasicEditor2");
            exception->bstrDescription = SysAllocString(L"the editor failed");
            exception->bstrHelpFile = SysAllocString(L"editor.hlp");
        }
        return DISP_E_EXCEPTION;
    }

    void Answer(DISPID member, VARIANT& result) const
    {
        if (auto flag = flagAnswers.find(member); flag != flagAnswers.end()) {
            result.vt = VT_BOOL;
            result.boolVal = flag->second;
        } else if (auto text = textAnswers.find(member); text != textAnswers.end()) {
            result.vt = VT_BSTR;
            result.bstrVal = SysAllocString(text->second.c_str());
        } else if (auto object = objectAnswers.find(member); object != objectAnswers.end()) {
            result.vt = VT_DISPATCH;
            result.pdispVal = object->second;
            object->second->AddRef();
        }
    }
};

} // namespace brannoc::testing
