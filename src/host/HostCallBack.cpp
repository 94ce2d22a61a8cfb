#include "host/HostCallBack.h"
#include "host/EntryGuard.h"
#include "values/Variant.h"
#include <algorithm>
#include <vector>

namespace brannoc {

DISPID HostCallBack::Find(IDispatch* callBack, const wchar_t* name)
{
    if (!callBack)
        return DISPID_UNKNOWN;
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    if (FAILED(callBack->GetIDsOfNames(IID_NULL, names, 1, 0x409, &id)))
        return DISPID_UNKNOWN;
    return id;
}

bool HostCallBack::InvokeByName(IDispatch* callBack, const wchar_t* name, VARIANT* arguments, UINT count,
                                VARIANT* result, WORD kind)
{
    DISPID id = Find(callBack, name);
    if (id == DISPID_UNKNOWN)
        return false;
    // IDispatch takes its arguments last first.
    std::reverse(arguments, arguments + count);
    DISPPARAMS parameters{arguments, nullptr, count, 0};
    int lockDepth = EngineLock::Suspend();
    HRESULT hr = callBack->Invoke(id, IID_NULL, 0x409, kind, &parameters, result, nullptr, nullptr);
    EngineLock::Resume(lockDepth);
    return SUCCEEDED(hr);
}

namespace {

VARIANT EngineArgument(IDispatch* engine)
{
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_DISPATCH;
    value.pdispVal = engine;   // borrowed for the call: the callee adds its own reference if it keeps it
    return value;
}

} // namespace

bool HostCallBack::DebugPrint(IDispatch* callBack, IDispatch* engine, const std::wstring& text)
{
    Bstr textArgument(text);
    VARIANT arguments[2] = {EngineArgument(engine), {}};
    arguments[1].vt = VT_BSTR;
    arguments[1].bstrVal = textArgument.Get();
    return InvokeByName(callBack, L"DebugPrint", arguments, 2, nullptr);
}

bool HostCallBack::DebugTrace(IDispatch* callBack, IDispatch* engine, short kind, const std::wstring& text)
{
    Bstr textArgument(text);
    VARIANT arguments[3] = {EngineArgument(engine), {}, {}};
    arguments[1].vt = VT_I2;
    arguments[1].iVal = kind;
    arguments[2].vt = VT_BSTR;
    arguments[2].bstrVal = textArgument.Get();
    return InvokeByName(callBack, L"DebugTrace", arguments, 3, nullptr);
}

bool HostCallBack::Notify(IDispatch* callBack, IDispatch* engine, short code)
{
    VARIANT arguments[2] = {EngineArgument(engine), {}};
    arguments[1].vt = VT_I2;
    arguments[1].iVal = code;
    return InvokeByName(callBack, L"Notify", arguments, 2, nullptr);
}

bool HostCallBack::DoEvents(IDispatch* callBack, IDispatch* engine)
{
    VARIANT arguments[1] = {EngineArgument(engine)};
    return InvokeByName(callBack, L"DoEvents", arguments, 1, nullptr);
}

bool HostCallBack::PostMacroRun(IDispatch* callBack, IDispatch* engine)
{
    VARIANT arguments[1] = {EngineArgument(engine)};
    return InvokeByName(callBack, L"PostMacroRun", arguments, 1, nullptr);
}

bool HostCallBack::EditEventCode(IDispatch* callBack, IDispatch* engine, const std::wstring& handlerName, bool oneEvent)
{
    Bstr nameArgument(handlerName);
    VARIANT arguments[3] = {EngineArgument(engine), {}, {}};
    arguments[1].vt = VT_BSTR;
    arguments[1].bstrVal = nameArgument.Get();
    arguments[2].vt = VT_BOOL;
    arguments[2].boolVal = oneEvent ? VARIANT_TRUE : VARIANT_FALSE;
    return InvokeByName(callBack, L"EditEventCode", arguments, 3, nullptr);
}

namespace {

// Takes the text out of a call's result; false when it is not a string.
bool TextResult(VARIANT& result, std::wstring& text)
{
    Variant held;
    held.Attach(result);
    const VARIANT& value = held.Raw();
    if (value.vt != VT_BSTR)
        return false;
    text.assign(value.bstrVal ? value.bstrVal : L"", value.bstrVal ? SysStringLen(value.bstrVal) : 0);
    return true;
}

} // namespace

bool HostCallBack::ReadMacro(IDispatch* callBack, IDispatch* engine, const std::wstring& name, std::wstring& text)
{
    Bstr nameArgument(name);
    VARIANT arguments[2] = {EngineArgument(engine), {}};
    arguments[1].vt = VT_BSTR;
    arguments[1].bstrVal = nameArgument.Get();
    VARIANT result;
    VariantInit(&result);
    if (!InvokeByName(callBack, L"ReadMacro", arguments, 2, &result))
        return false;
    return TextResult(result, text) && !text.empty();
}

bool HostCallBack::MapMacroName(IDispatch* callBack, IDispatch* engine, const std::wstring& name,
                                const std::wstring& base, std::wstring& mapped)
{
    Bstr nameArgument(name);
    // A name that comes from the host is relative to nothing: its base is a null string.
    Bstr baseArgument;
    if (!base.empty())
        baseArgument = Bstr(base);
    VARIANT arguments[3] = {EngineArgument(engine), {}, {}};
    arguments[1].vt = VT_BSTR;
    arguments[1].bstrVal = nameArgument.Get();
    arguments[2].vt = VT_BSTR;
    arguments[2].bstrVal = baseArgument.Get();
    VARIANT result;
    VariantInit(&result);
    if (!InvokeByName(callBack, L"MapMacroName", arguments, 3, &result))
        return false;
    return TextResult(result, mapped) && !mapped.empty();
}

bool HostCallBack::SetMacroReferences(IDispatch* callBack, IDispatch* engine, const std::wstring& macroName)
{
    Bstr nameArgument(macroName);
    VARIANT arguments[2] = {EngineArgument(engine), {}};
    arguments[1].vt = VT_BSTR;
    arguments[1].bstrVal = nameArgument.Get();
    Variant result;
    if (!InvokeByName(callBack, L"SetMacroReferences", arguments, 2, &result.Raw()))
        return true;
    VARIANT_BOOL answer = VARIANT_TRUE;
    VARIANT converted;
    VariantInit(&converted);
    if (SUCCEEDED(VariantChangeType(&converted, &result.Raw(), 0, VT_BOOL)))
        answer = converted.boolVal;
    return answer != VARIANT_FALSE;
}

namespace {

// The answer of a Boolean member; true when it cannot be read as one.
bool BooleanAnswer(Variant& result)
{
    VARIANT converted;
    VariantInit(&converted);
    if (FAILED(VariantChangeType(&converted, &result.Raw(), 0, VT_BOOL)))
        return true;
    return converted.boolVal != VARIANT_FALSE;
}

} // namespace

bool HostCallBack::ParseMacroProperties(IDispatch* callBack, IDispatch* engine, const std::wstring& macroName,
                                        const std::wstring& properties)
{
    Bstr nameArgument(macroName);
    Bstr propertiesArgument(properties);
    VARIANT arguments[3] = {EngineArgument(engine), {}, {}};
    arguments[1].vt = VT_BSTR;
    arguments[1].bstrVal = nameArgument.Get();
    arguments[2].vt = VT_BSTR;
    arguments[2].bstrVal = propertiesArgument.Get();
    Variant result;
    if (!InvokeByName(callBack, L"ParseMacroProperties", arguments, 3, &result.Raw()))
        return true;
    return BooleanAnswer(result);
}

HostCallBack::InstanceAnswer HostCallBack::NewMacroInstance(IDispatch* callBack, IDispatch* engine,
                                                            const std::wstring& macroName, ComRef<IDispatch>& object)
{
    object = {};
    if (!callBack || Find(callBack, L"NewMacroInstance") == DISPID_UNKNOWN)
        return InstanceAnswer::Absent;
    Bstr nameArgument(macroName);
    VARIANT arguments[2] = {EngineArgument(engine), {}};
    arguments[1].vt = VT_BSTR;
    arguments[1].bstrVal = nameArgument.Get();
    Variant result;
    if (!InvokeByName(callBack, L"NewMacroInstance", arguments, 2, &result.Raw()))
        return InstanceAnswer::Answered;
    const VARIANT& value = result.Raw();
    if (value.vt == VT_DISPATCH && value.pdispVal)
        object = ComRef<IDispatch>::Share(value.pdispVal);
    else if (value.vt == VT_UNKNOWN && value.punkVal)
        value.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.Out()));
    return InstanceAnswer::Answered;
}

bool HostCallBack::Window(IDispatch* callBack, long& window)
{
    Variant answer;
    // A property get: descriptions declare it "Window&=".
    if (!InvokeByName(callBack, L"Window", nullptr, 0, &answer.Raw(), DISPATCH_METHOD | DISPATCH_PROPERTYGET))
        return false;
    VARIANT& raw = answer.Raw();
    if (FAILED(VariantChangeType(&raw, &raw, 0, VT_I4)))
        return false;
    window = raw.lVal;
    return true;
}

bool HostCallBack::OverrideModalWindowOwner(IDispatch* callBack, IDispatch* engine, long& owner)
{
    VARIANT arguments[2] = {EngineArgument(engine), {}};
    arguments[1].vt = VT_BYREF | VT_I4;
    arguments[1].plVal = &owner;
    return InvokeByName(callBack, L"OverrideModalWindowOwner", arguments, 2, nullptr);
}

} // namespace brannoc
