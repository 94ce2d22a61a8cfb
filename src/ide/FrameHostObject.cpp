// A host automation object attached to a child frame: an unnamed extension of the engine, and the
// receiver of the frame's about-box, do-events, help, notify and window requests. Each request tries
// the object's "_" + name member, then "CallBack" + name, looked up by name at every call; a missing
// member does nothing.
#include "ide/EditorFrameState.h"

#include "ide/EngineLink.h"
#include "values/Variant.h"

#include "brannoc.h"

#include <algorithm>
#include <vector>

namespace brannoc::ide {

namespace {

DISPID FindMember(IDispatch* object, const std::wstring& name)
{
    LPOLESTR member = const_cast<LPOLESTR>(name.c_str());
    DISPID id = DISPID_UNKNOWN;
    if (FAILED(object->GetIDsOfNames(IID_NULL, &member, 1, LOCALE_USER_DEFAULT, &id)))
        return DISPID_UNKNOWN;
    return id;
}

// Calls "_" + request, else "CallBack" + request, with the arguments (first argument first) and, for a
// request that answers, `result` (null for the others: some objects refuse a result for a Sub); false
// when the object has neither member or the call fails.
bool CallHostObject(IDispatch* object, const wchar_t* request, std::vector<VARIANT> arguments, VARIANT* result)
{
    if (!object)
        return false;
    DISPID id = FindMember(object, std::wstring(L"_") + request);
    if (id == DISPID_UNKNOWN)
        id = FindMember(object, std::wstring(L"CallBack") + request);
    if (id == DISPID_UNKNOWN)
        return false;
    std::reverse(arguments.begin(), arguments.end());
    DISPPARAMS parameters{arguments.empty() ? nullptr : arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    const WORD kind = result ? DISPATCH_METHOD | DISPATCH_PROPERTYGET : DISPATCH_METHOD;
    return SUCCEEDED(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, result, nullptr, nullptr));
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
