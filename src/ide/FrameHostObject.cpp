// A host automation object attached to a child frame: an unnamed extension of the engine, and the
// receiver of the frame's about-box, do-events, help, notify and window requests. Each request tries
// the object's "_" + name member, then "CallBack" + name, looked up by name at every call; a missing
// member does nothing. Also the host's error objects that the frame shows.
#include "ide/EditorFrameState.h"

#include "host/HostCallBack.h"
#include "ide/EngineLink.h"
#include "values/Variant.h"

#include "brannoc.h"

#include <algorithm>
#include <vector>

namespace brannoc::ide {

namespace {

enum HostErrorStrings : unsigned { IDS_NO_ERROR_INFORMATION = 566, IDS_ERROR_CODE = 567, IDS_AUTOMATION_ERROR_CODE = 568 };

// Invokes a member with the arguments (first argument first) and the US English locale, as every dispatch
// call of the engine; `result` null for a member that answers nothing (some objects refuse a result for a
// Sub).
bool InvokeMember(IDispatch* object, DISPID id, WORD kind, std::vector<VARIANT> arguments, VARIANT* result)
{
    std::reverse(arguments.begin(), arguments.end());
    DISPPARAMS parameters{arguments.empty() ? nullptr : arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    return SUCCEEDED(object->Invoke(id, IID_NULL, 0x409, kind, &parameters, result, nullptr, nullptr));
}

// Calls "_" + request, else "CallBack" + request; false when the object has neither member or the call
// fails.
bool CallHostObject(IDispatch* object, const wchar_t* request, std::vector<VARIANT> arguments, VARIANT* result)
{
    if (!object)
        return false;
    DISPID id = HostCallBack::Find(object, (std::wstring(L"_") + request).c_str());
    if (id == DISPID_UNKNOWN)
        id = HostCallBack::Find(object, (std::wstring(L"CallBack") + request).c_str());
    if (id == DISPID_UNKNOWN)
        return false;
    return InvokeMember(object, id, result ? DISPATCH_METHOD | DISPATCH_PROPERTYGET : DISPATCH_METHOD,
                        std::move(arguments), result);
}

// A property read by name; false when the object has none or the call fails.
bool PropertyByName(IDispatch* object, const wchar_t* name, Variant& value)
{
    const DISPID id = HostCallBack::Find(object, name);
    return id != DISPID_UNKNOWN && InvokeMember(object, id, DISPATCH_PROPERTYGET, {}, &value.Raw());
}

VARIANT WholeArgument(LONG value)
{
    VARIANT argument;
    VariantInit(&argument);
    argument.vt = VT_I4;
    argument.lVal = value;
    return argument;
}

} // namespace

bool EditorFrame::AttachHostObject(IDispatch* object)
{
    if (!object || IsTopLevel() || !m_engine || !CU_AddExtension(m_engine, "", object))
        return false;
    m_hostObject = ComRef<IDispatch>::Share(object);
    return true;
}

bool EditorFrame::DetachHost(bool mayCancel)
{
    EndExecution();
    if (!CloseAll(mayCancel ? PromptKind::CanCancel : PromptKind::YesNo))
        return false;
    m_hostObject = {};
    DestroyWindow(m_window);
    return true;
}

void EditorFrame::NotifyHost(int code)
{
    if (m_callbacks.notify)
        m_callbacks.notify(m_window, code);
    CallHostObject(m_hostObject.Get(), L"Notify", {WholeArgument(code)}, nullptr);
}

bool EditorFrame::HostAboutBox()
{
    if (m_callbacks.about) {
        m_callbacks.about(m_window);
        return true;
    }
    return CallHostObject(m_hostObject.Get(), L"AboutBox", {}, nullptr);
}

bool EditorFrame::HostDoEvents()
{
    if (m_callbacks.doEvents) {
        m_callbacks.doEvents(m_window);
        return true;
    }
    return CallHostObject(m_hostObject.Get(), L"DoEvents", {}, nullptr);
}

bool EditorFrame::HostHelp(const std::string& word)
{
    if (m_callbacks.help)
        return m_callbacks.help(m_window, word.c_str()) != FALSE;
    Bstr text(WideText(word));
    VARIANT argument;
    VariantInit(&argument);
    argument.vt = VT_BSTR;
    argument.bstrVal = text.Get();
    Variant taken;
    if (!CallHostObject(m_hostObject.Get(), L"Help", {argument}, &taken.Raw()))
        return false;
    VARIANT& answer = taken.Raw();
    return SUCCEEDED(VariantChangeType(&answer, &answer, 0, VT_BOOL)) && answer.boolVal != VARIANT_FALSE;
}

void EditorFrame::ReportHostError(IDispatch* error)
{
    LONG number = 0;
    std::string description;
    if (error) {
        Variant value;
        if (PropertyByName(error, L"Number", value) && SUCCEEDED(VariantChangeType(&value.Raw(), &value.Raw(), 0, VT_I4)))
            number = value.Raw().lVal;
        Variant text;
        if (PropertyByName(error, L"Description", text) && text.Raw().vt == VT_BSTR && text.Raw().bstrVal)
            description = NarrowText(text.Raw().bstrVal);
    }
    m_hostErrorNumber = number;
    if (description.empty()) {
        // Automation errors (status codes) are shown in hexadecimal.
        char code[32];
        if (number < 0)
            wsprintfA(code, "0x%08lX", static_cast<unsigned long>(number));
        else
            wsprintfA(code, "%ld", number);
        std::string text = Text(number == 0 ? IDS_NO_ERROR_INFORMATION : number < 0 ? IDS_AUTOMATION_ERROR_CODE : IDS_ERROR_CODE);
        ReplaceAll(text, "<N>", code);
        description = text;
    }
    Beep(MB_ICONHAND);
    ShowText(description, MB_OK | MB_ICONEXCLAMATION);
}

HWND EditorFrame::HostWindow()
{
    if (m_callbacks.window)
        return m_callbacks.window(m_window);
    Variant taken;
    if (!CallHostObject(m_hostObject.Get(), L"Window", {}, &taken.Raw()))
        return nullptr;
    VARIANT& answer = taken.Raw();
    if (FAILED(VariantChangeType(&answer, &answer, 0, VT_I4)))
        return nullptr;
    return reinterpret_cast<HWND>(static_cast<LONG_PTR>(answer.lVal));
}

} // namespace brannoc::ide
