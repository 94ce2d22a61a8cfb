#include "host/ErrDispatch.h"

#include "brannoc.h"
#include "exec/ErrObject.h"
#include "host/EngineContext.h"
#include "host/EntryGuard.h"
#include "values/Variant.h"

#include <new>

namespace brannoc {

namespace {

// The implementation object: its virtual functions after IDispatch's are the ErrObject interface's
// members in the type library's order, so the type information's dispatcher calls them directly.
// IUnknown and IDispatch are never reached through it (the dispatch object answers them).
class ErrImplementation final : public IDispatch {
public:
    explicit ErrImplementation(EngineContext& context) : m_context(&context) {}

    void Detach() { m_context = nullptr; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override
    {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override
    {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }

    virtual HRESULT STDMETHODCALLTYPE get_Number(LONG* value) { return ReadLong(ErrMember::Number, value); }
    virtual HRESULT STDMETHODCALLTYPE put_Number(LONG value) { return WriteLong(ErrMember::Number, value); }
    virtual HRESULT STDMETHODCALLTYPE get_Description(BSTR* value) { return ReadText(ErrMember::Description, value); }
    virtual HRESULT STDMETHODCALLTYPE put_Description(BSTR value) { return WriteText(ErrMember::Description, value); }
    virtual HRESULT STDMETHODCALLTYPE get_Source(BSTR* value) { return ReadText(ErrMember::Source, value); }
    virtual HRESULT STDMETHODCALLTYPE put_Source(BSTR value) { return WriteText(ErrMember::Source, value); }
    virtual HRESULT STDMETHODCALLTYPE get_HelpFile(BSTR* value) { return ReadText(ErrMember::HelpFile, value); }
    virtual HRESULT STDMETHODCALLTYPE put_HelpFile(BSTR value) { return WriteText(ErrMember::HelpFile, value); }
    virtual HRESULT STDMETHODCALLTYPE get_HelpContext(LONG* value) { return ReadLong(ErrMember::HelpContext, value); }
    virtual HRESULT STDMETHODCALLTYPE put_HelpContext(LONG value) { return WriteLong(ErrMember::HelpContext, value); }
    virtual HRESULT STDMETHODCALLTYPE get_LastDllError(LONG* value) { return ReadLong(ErrMember::LastDllError, value); }

    // Raises the error in the engine the way Err.Raise does in a macro.
    virtual HRESULT STDMETHODCALLTYPE Raise(LONG number, VARIANT source, VARIANT description, VARIANT helpFile,
                                            VARIANT helpContext)
    {
        if (!m_context)
            return E_UNEXPECTED;
        EntryGuard guard(*m_context);
        Variant arguments[5];
        arguments[0].SetLong(number);
        const VARIANT* optional[4] = {&source, &description, &helpFile, &helpContext};
        for (int i = 0; i < 4; ++i) {
            if (!arguments[1 + i].CopyIndirectFrom(*optional[i]))
                return E_OUTOFMEMORY;
        }
        (void)RaiseFromErr(m_context->Machine(), arguments);
        return S_OK;
    }

    virtual HRESULT STDMETHODCALLTYPE Clear()
    {
        if (!m_context)
            return E_UNEXPECTED;
        EntryGuard guard(*m_context);
        m_context->Machine().SetErr(0, {}, {}, {}, 0);
        return S_OK;
    }

private:
    HRESULT Read(ErrMember member, Variant& value)
    {
        if (!m_context)
            return E_UNEXPECTED;
        EntryGuard guard(*m_context);
        return ReadErrProperty(m_context->Machine().Error(), member, value) ? S_OK : E_OUTOFMEMORY;
    }

    HRESULT ReadLong(ErrMember member, LONG* out)
    {
        if (!out)
            return E_POINTER;
        Variant value;
        const HRESULT status = Read(member, value);
        *out = SUCCEEDED(status) ? value.Long() : 0;
        return status;
    }

    HRESULT ReadText(ErrMember member, BSTR* out)
    {
        if (!out)
            return E_POINTER;
        *out = nullptr;
        Variant value;
        const HRESULT status = Read(member, value);
        if (FAILED(status))
            return status;
        const std::wstring_view text = value.StringView();
        *out = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        return *out ? S_OK : E_OUTOFMEMORY;
    }

    HRESULT Write(ErrMember member, const Variant& value)
    {
        if (!m_context)
            return E_UNEXPECTED;
        EntryGuard guard(*m_context);
        return WriteErrProperty(m_context->Machine(), member, value) ? S_OK : DISP_E_TYPEMISMATCH;
    }

    HRESULT WriteLong(ErrMember member, LONG number)
    {
        Variant value;
        value.SetLong(number);
        return Write(member, value);
    }

    HRESULT WriteText(ErrMember member, BSTR text)
    {
        Variant value;
        if (!value.SetString(text ? std::wstring_view(text, SysStringLen(text)) : std::wstring_view()))
            return E_OUTOFMEMORY;
        return Write(member, value);
    }

    EngineContext* m_context;
};

} // namespace

ComRef<IDispatch> CreateErrDispatch(EngineContext& context, ITypeInfo* classType)
{
    if (!classType)
        return {};
    ComRef<ITypeLib> library;
    UINT index = 0;
    ComRef<ITypeInfo> errType;
    if (FAILED(classType->GetContainingTypeLib(library.Out(), &index)) ||
        FAILED(library->GetTypeInfoOfGuid(IID_ErrObject, errType.Out())))
        return {};
    // The vtable half of the dual interface describes the implementation's functions.
    HREFTYPE href = 0;
    ComRef<ITypeInfo> vtableType;
    if (SUCCEEDED(errType->GetRefTypeOfImplType(static_cast<UINT>(-1), &href)))
        errType->GetRefTypeInfo(href, vtableType.Out());
    auto* implementation = new (std::nothrow) ErrImplementation(context);
    if (!implementation)
        return {};
    IDispatch* dispatch =
        OA_CreateDispatch(vtableType ? vtableType.Get() : errType.Get(), KZ_ErrObjectDestroy, implementation, nullptr);
    if (!dispatch)
        delete implementation;
    return ComRef<IDispatch>::Adopt(dispatch);
}

void DetachErrDispatch(IDispatch* dispatch)
{
    if (!dispatch)
        return;
    if (auto* implementation = static_cast<ErrImplementation*>(OA_GetDispatchData(dispatch)))
        implementation->Detach();
}

} // namespace brannoc

// Destroy function of the Err object's dispatch object: frees the implementation (null: nothing).
extern "C" void __stdcall KZ_ErrObjectDestroy(void* implementation, void* /*userData*/)
{
    delete static_cast<brannoc::ErrImplementation*>(implementation);
}
