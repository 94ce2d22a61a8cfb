#include "ide/FrameCallBack.h"

#include "ide/EditorFrameState.h"
#include "ide/EngineLink.h"

#include "brannoc.h"

namespace brannoc::ide {

namespace {

// The members the engine may call, in the order of the implementation's virtual functions below.
const wchar_t kCallBackDescription[] =
    L"=CallBack\nDebugPrint CodeUnit*,Text$\nDebugTrace CodeUnit*,Type%,Text$\nDoEvents CodeUnit*\n"
    L"Notify CodeUnit*,Type%\nReadMacro$(CodeUnit*,MacroName$)\nWindow&=\n"
    L"MapMacroName$(CodeUnit*,MacroName$,BaseName$)\n"
    L"ParseMacroProperties(CodeUnit*,MacroName$,Properties$) As Boolean\n"
    L"NewMacroInstance(CodeUnit*,MacroName$) As Object\nEditEventCode CodeUnit*,HandlerName$,Any~\n"
    L"PostMacroRun CodeUnit*\nSetMacroReferences(CodeUnit*,MacroName$) As Boolean\n"
    L"OverrideModalWindowOwner CodeUnit*,ByRef hWndOwner&";

std::wstring_view View(BSTR text) { return {text ? text : L"", text ? SysStringLen(text) : 0u}; }

// Each member passes the request to the frame while it is attached; afterwards it does nothing.
class FrameCallBack final {
public:
    // No virtual destructor: the virtual functions are exactly the described members, in their order.
    explicit FrameCallBack(EditorFrame& frame) : m_frame(&frame) {}
    void Detach() { m_frame = nullptr; }

    virtual void __stdcall DebugPrint(IDispatch*, BSTR text)
    {
        if (m_frame)
            m_frame->DebugPrint(NarrowText(View(text)));
    }
    virtual void __stdcall DebugTrace(IDispatch*, short type, BSTR text)
    {
        if (m_frame && m_frame->m_callbacks.debugTrace)
            m_frame->m_callbacks.debugTrace(m_frame->m_window, type, NarrowText(View(text)).c_str());
    }
    // The host's own pump (callback or object) when it has one; else up to 100 waiting messages are
    // handled, so that the frame (Pause, End, closing) answers while a macro runs.
    virtual void __stdcall DoEvents(IDispatch*)
    {
        if (m_frame && m_frame->HostDoEvents())
            return;
        MSG message;
        for (int handled = 0; handled < 100 && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE); ++handled) {
            if (message.message == WM_QUIT) {
                PostQuitMessage(static_cast<int>(message.wParam));
                return;
            }
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    virtual void __stdcall Notify(IDispatch*, short code)
    {
        if (m_frame)
            m_frame->OnEngineNotify(code);
    }
    virtual BSTR __stdcall ReadMacro(IDispatch* unit, BSTR name)
    {
        return m_frame ? m_frame->ReadMacro(unit, std::wstring(View(name))) : nullptr;
    }
    virtual long __stdcall Window()
    {
        if (!m_frame)
            return 0;
        HWND window = m_frame->HostWindow();
        return static_cast<long>(reinterpret_cast<LONG_PTR>(window ? window : m_frame->m_window));
    }
    virtual BSTR __stdcall MapMacroName(IDispatch*, BSTR name, BSTR)
    {
        return SysAllocStringLen(name, name ? SysStringLen(name) : 0);
    }
    // Without a host callback the frame answers as a callback without these members would.
    virtual VARIANT_BOOL __stdcall ParseMacroProperties(IDispatch*, BSTR name, BSTR properties)
    {
        if (!m_frame || !m_frame->m_callbacks.parseProperties)
            return VARIANT_TRUE;
        return m_frame->m_callbacks.parseProperties(m_frame->m_window, NarrowText(View(name)).c_str(),
                                                    NarrowText(View(properties)).c_str())
                   ? VARIANT_TRUE
                   : VARIANT_FALSE;
    }
    // The object goes to the engine with the host's reference.
    virtual IDispatch* __stdcall NewMacroInstance(IDispatch*, BSTR name)
    {
        if (!m_frame || !m_frame->m_callbacks.newInstance)
            return nullptr;
        return m_frame->m_callbacks.newInstance(m_frame->m_window, NarrowText(View(name)).c_str());
    }
    virtual void __stdcall EditEventCode(IDispatch*, BSTR handler, VARIANT_BOOL)
    {
        if (m_frame)
            m_frame->EditEventCode(NarrowText(View(handler)));
    }
    virtual void __stdcall PostMacroRun(IDispatch*) {}
    virtual VARIANT_BOOL __stdcall SetMacroReferences(IDispatch*, BSTR) { return VARIANT_TRUE; }
    virtual void __stdcall OverrideModalWindowOwner(IDispatch*, long* owner)
    {
        if (!m_frame || !m_frame->m_callbacks.modalOwner || !owner)
            return;
        HWND window = reinterpret_cast<HWND>(static_cast<LONG_PTR>(*owner));
        m_frame->m_callbacks.modalOwner(m_frame->m_window, &window);
        *owner = static_cast<long>(reinterpret_cast<LONG_PTR>(window));
    }

private:
    EditorFrame* m_frame;
};

void __stdcall DestroyCallBack(void* implementation, void*) { delete static_cast<FrameCallBack*>(implementation); }

} // namespace

IDispatch* CreateFrameCallBack(EditorFrame& frame)
{
    ITypeInfo* type = OA_CreateTypeW(kCallBackDescription);
    if (!type)
        return nullptr;
    auto* implementation = new (std::nothrow) FrameCallBack(frame);
    IDispatch* dispatch = implementation ? OA_CreateDispatch(type, DestroyCallBack, implementation, nullptr) : nullptr;
    if (!dispatch)
        delete implementation;
    type->Release();
    return dispatch;
}

void DetachFrameCallBack(IDispatch* callBack)
{
    if (auto* implementation = static_cast<FrameCallBack*>(OA_GetDispatchData(callBack)))
        implementation->Detach();
}

} // namespace brannoc::ide
