#pragma once
// An event sink: the dispatch object an event source calls for each of its events. While a WithEvents
// variable (or an extension added with "{WithEvents}") holds a source object, the sink is advised on the
// source's connection point for its source interface, and each event becomes a call of the procedure
// named after the sink's prefix, "_" and the event: for a variable, the procedure of the variable's
// module run in the variable's instance; for an extension, the public procedure of the loaded macros.
// A class instance of the macro as the source needs no connection point: the sink listens to the
// instance, which raises its events through it (RaiseEvent).
#include "automation/EventPositions.h"
#include "exec/EventConnection.h"
#include "host/ArgumentMatching.h"
#include "host/LateBoundObject.h"
#include "host/MacroCall.h"
#include "values/ComRef.h"

#include <ocidl.h>
#include <string>

namespace brannoc {

class EngineContext;
class ModuleInstance;

namespace automation {

class EventSink final : public LateBoundObject<EventSink>, public EventConnection {
public:
    // A sink for a WithEvents variable named prefix of receiver; source is the source interface of the
    // variable's declared type (null: taken from each object assigned, when it tells its class). The
    // caller owns the one reference (the receiver's hold, given up by Close).
    static EventSink* ForVariable(EngineContext& context, ModuleInstance& receiver, const std::string& prefix,
                                  ITypeInfo* source);
    // A sink for a host object's events, routed to the procedures named prefix + "_" + event of the
    // loaded macros. The caller owns the one reference, given up by Close.
    static EventSink* ForExtension(EngineContext& context, const std::string& prefix, ITypeInfo* source);
    // Disconnects every sink of the engine from its source: no more events arrive until an object is
    // assigned again. Answers how many were connected.
    static int DisconnectAll(EngineContext& context);

    // IDispatch: the events by their names in the source interface.
    HRESULT __stdcall GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) override;
    HRESULT __stdcall Invoke(DISPID member, REFIID id, LCID lcid, WORD flags, DISPPARAMS* parameters,
                             VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

    // EventConnection.
    IUnknown* Object() override { return static_cast<IDispatch*>(this); }
    void Assign(IUnknown* object) override;
    void Close() override;
    [[nodiscard]] bool Hear(const std::string& event, Variant* arguments, int count) override;
    void SourceEnded(ModuleInstance& source) override;

    bool IsConnected() const { return m_cookie != 0 || m_macroSource != nullptr; }

    // The filter of a sink that takes every event of its source.
    static constexpr DISPID kAllEvents = -2;
    // Restricts the sink to the one event (kAllEvents: all of them again). Events outside the filter
    // are not offered to the host for writing their procedure.
    void RestrictTo(DISPID event) { m_filter = event; }

private:
    friend class LateBoundObject<EventSink>;
    EventSink(EngineContext& context, ModuleInstance* receiver, std::string prefix, ITypeInfo* source);
    ~EventSink();

    // The sink answers as its source interface too, and is described by it.
    static constexpr bool kDescribed = true;
    bool AnswersAlso(REFIID id) const { return !IsEqualIID(m_sourceId, GUID_NULL) && IsEqualIID(id, m_sourceId); }
    ITypeInfo* DescribingType() const { return m_source.Get(); }

    void Advise(IDispatch* object);
    void Disconnect();
    // The procedure prefix_event: in the receiver's module, or among the loaded macros' public ones.
    bool FindProcedure(const std::wstring& event, MacroCallTarget& target);
    // member: the source's DISPID of the event (DISPID_UNKNOWN for an event raised by macro code).
    HRESULT Deliver(const std::wstring& event, const GivenArguments& given, VARIANT* result, EXCEPINFO* exception,
                    UINT* argumentError, Interpreter::ErrorExit errorExit, DISPID member = DISPID_UNKNOWN);
    // The position parameters the event's procedure declaration gets from the source's types.
    PositionParameters PositionsOf(DISPID event) const;
    // Offers the host the chance to write the procedure of an event that has none (EditEventCode).
    void OfferEventCode(const std::wstring& event, DISPID member);
    void TraceSink(const wchar_t* verb) const;

    EngineContext* m_context;
    ModuleInstance* m_receiver;
    std::string m_prefix;
    ComRef<ITypeInfo> m_source;
    IID m_sourceId = GUID_NULL;
    ComRef<IDispatch> m_connected;
    ComRef<IConnectionPoint> m_point;
    DWORD m_cookie = 0;
    DISPID m_filter = kAllEvents;
    // A class instance of the macro that this sink listens to (its object is held in m_connected).
    ModuleInstance* m_macroSource = nullptr;
    bool m_closed = false;
};

} // namespace automation
} // namespace brannoc
