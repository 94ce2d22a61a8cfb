#include "host/HandlerCollection.h"

#include "brannoc.h"
#include "automation/IndexedEnumerator.h"
#include "host/CodeUnit.h"
#include "host/EntryGuard.h"
#include "host/Handler.h"

#include <new>

namespace brannoc {

HandlerCollection* HandlerCollection::Create(CodeUnit& engine, std::wstring prefix, ITypeInfo* interfaceType,
                                             IDispatch* eventObject, ITypeInfo* source, std::vector<Entry> handlers)
{
    HandlerCollection* collection = new (std::nothrow)
        HandlerCollection(engine, std::move(prefix), interfaceType, eventObject, source, std::move(handlers));
    return collection;
}

HandlerCollection::HandlerCollection(CodeUnit& engine, std::wstring prefix, ITypeInfo* interfaceType,
                                     IDispatch* eventObject, ITypeInfo* source, std::vector<Entry> handlers)
    : m_engine(engine),
      m_prefix(std::move(prefix)),
      m_interfaceType(ComRef<ITypeInfo>::Share(interfaceType)),
      m_eventObject(ComRef<IDispatch>::Share(eventObject)),
      m_source(ComRef<ITypeInfo>::Share(source)),
      m_handlers(std::move(handlers))
{
    m_engine.AddRef();
}

HandlerCollection::~HandlerCollection()
{
    // The API trace brackets the end of the collection's handlers with its own entry and exit lines.
    EngineContext& context = m_engine.Context();
    const bool traced = context.ApiTraceOn();
    if (traced)
        context.Trace(TraceKind::Entry, L"*DestroyHandlers(\"" + m_prefix + L"\")");
    for (Entry& entry : m_handlers)
        entry.handler->Release();
    if (traced)
        context.Trace(TraceKind::Exit, L"");
    m_engine.Release();
}

bool HandlerCollection::AnswersAlso(REFIID id) const { return IsEqualIID(id, IID__Handlers) != FALSE; }

HRESULT __stdcall HandlerCollection::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    return DispGetIDsOfNames(m_interfaceType.Get(), names, count, ids);
}

HRESULT __stdcall HandlerCollection::Invoke(DISPID member, REFIID id, LCID, WORD flags, DISPPARAMS* parameters,
                                            VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    if (!IsEqualIID(id, IID_NULL))
        return DISP_E_UNKNOWNINTERFACE;
    return DispInvoke(static_cast<IDispatch*>(this), m_interfaceType.Get(), member, flags, parameters, result,
                      exception, argumentError);
}

HRESULT __stdcall HandlerCollection::get_Count(short* result)
{
    if (!result)
        return E_POINTER;
    *result = static_cast<short>(m_handlers.size());
    return S_OK;
}

// By the event's name, without regard to case; DISP_E_MEMBERNOTFOUND for an unknown name.
HRESULT __stdcall HandlerCollection::get_Item(BSTR name, IDispatch** result)
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    for (const Entry& entry : m_handlers) {
        if (name && _wcsicmp(entry.event.c_str(), name) == 0) {
            entry.handler->AddRef();
            *result = entry.handler;
            return S_OK;
        }
    }
    return DISP_E_MEMBERNOTFOUND;
}

BOOL __stdcall HandlerCollection::Element(IUnknown* data, LONG index, VARIANT* element)
{
    auto* collection = static_cast<HandlerCollection*>(static_cast<IDispatch*>(data));
    if (index < 0 || static_cast<std::size_t>(index) >= collection->m_handlers.size())
        return FALSE;
    Handler* handler = collection->m_handlers[static_cast<std::size_t>(index)].handler;
    handler->AddRef();
    element->vt = VT_DISPATCH;
    element->pdispVal = handler;
    return TRUE;
}

HRESULT __stdcall HandlerCollection::get__NewEnum(IUnknown** result)
{
    if (!result)
        return E_POINTER;
    *result = automation::IndexedEnumerator::Create(static_cast<IDispatch*>(this), &Element);
    return *result ? S_OK : E_OUTOFMEMORY;
}

} // namespace brannoc
