#pragma once
// The handler collection CreateHandlers makes: one handler per event of an event-source object's
// default source interface, each bound to the procedure named prefix + "_" + the event. A dispatch
// object over the type library's _Handlers interface (Count, Item, _NewEnum).
#include "host/LateBoundObject.h"
#include "values/ComRef.h"
#include <oaidl.h>
#include <string>
#include <vector>

namespace brannoc {

class CodeUnit;
class Handler;

class HandlerCollection final : public LateBoundObject<HandlerCollection> {
public:
    struct Entry {
        std::wstring event;
        Handler* handler; // held
    };

    // The collection over its interface type; it holds the engine, the event object, the source type and
    // the handlers. The prefix given to CreateHandlers names the collection in the API trace.
    static HandlerCollection* Create(CodeUnit& engine, std::wstring prefix, ITypeInfo* interfaceType,
                                     IDispatch* eventObject, ITypeInfo* source, std::vector<Entry> handlers);

    HRESULT __stdcall GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) override;
    HRESULT __stdcall Invoke(DISPID member, REFIID id, LCID lcid, WORD flags, DISPPARAMS* parameters,
                             VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;
    // _Handlers, in the interface's order.
    virtual HRESULT __stdcall get_Count(short* result);
    virtual HRESULT __stdcall get_Item(BSTR name, IDispatch** result);
    virtual HRESULT __stdcall get__NewEnum(IUnknown** result);

private:
    friend class LateBoundObject<HandlerCollection>;
    // Answers as _Handlers too, described by its interface type.
    static constexpr bool kDescribed = true;
    bool AnswersAlso(REFIID id) const;
    ITypeInfo* DescribingType() const { return m_interfaceType.Get(); }

    HandlerCollection(CodeUnit& engine, std::wstring prefix, ITypeInfo* interfaceType, IDispatch* eventObject,
                      ITypeInfo* source, std::vector<Entry> handlers);
    ~HandlerCollection();
    static BOOL __stdcall Element(IUnknown* data, LONG index, VARIANT* element);

    CodeUnit& m_engine; // held
    std::wstring m_prefix;
    ComRef<ITypeInfo> m_interfaceType;
    ComRef<IDispatch> m_eventObject;
    ComRef<ITypeInfo> m_source;
    std::vector<Entry> m_handlers;
};

} // namespace brannoc
