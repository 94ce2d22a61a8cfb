#include "automation/ObjectCreation.h"

#include "automation/OutsideCall.h"
#include "values/ValueError.h"
#include "values/Variant.h"

namespace brannoc::automation {
namespace {

constexpr LCID kLocale = 0x409;

// The class identifier of a ProgID or of a class identifier written in braces.
bool ClassIdOf(const std::wstring& name, CLSID& id)
{
    if (name.empty())
        return false;
    return SUCCEEDED(CLSIDFromString(const_cast<LPOLESTR>(name.c_str()), &id));
}

bool DispatchOf(IUnknown* unknown, ComRef<IDispatch>& object)
{
    HRESULT status = E_NOINTERFACE;
    if (unknown) {
        OutsideCall outside;
        status = unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.Out()));
    }
    return SUCCEEDED(status) && object ? true : RaiseValueError(kErrorAutomation);
}

// A new instance of the class, started with OleRun when `run` asks for it.
bool CreateInstance(const std::wstring& className, bool run, ComRef<IUnknown>& unknown)
{
    CLSID id;
    if (!ClassIdOf(className, id))
        return RaiseValueError(kErrorServerNotFound);
    HRESULT status = S_OK;
    {
        OutsideCall outside;
        status = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IUnknown,
                                  reinterpret_cast<void**>(unknown.Out()));
        if (SUCCEEDED(status) && run)
            status = OleRun(unknown.Get());
    }
    return SUCCEEDED(status) && unknown ? true : RaiseValueError(kErrorCannotCreateObject);
}

bool ActiveObjectOf(const std::wstring& className, ComRef<IDispatch>& object)
{
    CLSID id;
    if (!ClassIdOf(className, id))
        return RaiseValueError(kErrorServerNotFound);
    ComRef<IUnknown> unknown;
    HRESULT status = S_OK;
    {
        OutsideCall outside;
        status = GetActiveObject(id, nullptr, unknown.Out());
    }
    if (FAILED(status) || !unknown)
        return RaiseValueError(kErrorNoActiveObject);
    return DispatchOf(unknown.Get(), object);
}

// The object a display name (a file name, or any moniker text) binds to.
bool BindDisplayName(const std::wstring& file, ComRef<IDispatch>& object)
{
    ComRef<IBindCtx> context;
    if (FAILED(CreateBindCtx(0, context.Out())) || !context)
        return RaiseValueError(kErrorOutOfMemory);
    HRESULT status = S_OK;
    {
        OutsideCall outside;
        ComRef<IMoniker> moniker;
        ULONG eaten = 0;
        status = MkParseDisplayName(context.Get(), file.c_str(), &eaten, moniker.Out());
        if (SUCCEEDED(status) && moniker)
            status = BindMoniker(moniker.Get(), 0, IID_IDispatch, reinterpret_cast<void**>(object.Out()));
        else if (SUCCEEDED(status))
            status = E_FAIL;
    }
    return SUCCEEDED(status) && object ? true : RaiseValueError(kErrorCannotLoadFile);
}

// A new object of the class that loads its state from the file.
bool LoadFromFile(const std::wstring& file, const std::wstring& className, ComRef<IDispatch>& object)
{
    ComRef<IUnknown> unknown;
    if (!CreateInstance(className, false, unknown))
        return false;
    HRESULT status = S_OK;
    {
        OutsideCall outside;
        ComRef<IPersistFile> persist;
        status = unknown->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(persist.Out()));
        if (SUCCEEDED(status))
            status = persist->Load(file.c_str(), 0);
        if (SUCCEEDED(status))
            status = unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.Out()));
    }
    return SUCCEEDED(status) && object ? true : RaiseValueError(kErrorCannotLoadFile);
}

} // namespace

bool CreateNamedObject(const std::wstring& className, ComRef<IDispatch>& object)
{
    ComRef<IUnknown> unknown;
    return CreateInstance(className, true, unknown) && DispatchOf(unknown.Get(), object);
}

bool FindObject(const std::wstring* file, const std::wstring* className, ComRef<IDispatch>& object)
{
    static const std::wstring s_none;
    const std::wstring& name = className ? *className : s_none;
    if (!file)
        return ActiveObjectOf(name, object);
    if (file->empty())
        return CreateNamedObject(name, object);
    if (name.empty())
        return BindDisplayName(*file, object);
    return LoadFromFile(*file, name, object);
}

bool StartEnumeration(IDispatch* object, ComRef<IEnumVARIANT>& enumerator)
{
    if (!object)
        return RaiseValueError(kErrorObjectIsNothing);
    Variant result;
    HRESULT status = S_OK;
    {
        OutsideCall outside;
        DISPPARAMS none{nullptr, nullptr, 0, 0};
        status = object->Invoke(DISPID_NEWENUM, IID_NULL, kLocale, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none,
                                &result.Raw(), nullptr, nullptr);
        const VARIANT& value = result.Raw();
        IUnknown* unknown = nullptr;
        if (SUCCEEDED(status))
            unknown = value.vt == VT_UNKNOWN || value.vt == VT_DISPATCH ? value.punkVal : nullptr;
        if (SUCCEEDED(status))
            status = unknown ? unknown->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(enumerator.Out()))
                             : E_NOINTERFACE;
    }
    return SUCCEEDED(status) && enumerator ? true : RaiseValueError(kErrorAutomation);
}

bool NextElement(IEnumVARIANT* enumerator, Variant& element)
{
    element.Clear();
    ULONG fetched = 0;
    HRESULT status = S_OK;
    {
        OutsideCall outside;
        status = enumerator->Next(1, &element.Raw(), &fetched);
    }
    return status == S_OK;
}

} // namespace brannoc::automation
