#pragma once
// A handler: a prototype that a host binds once (CreateHandler) and calls many times. The procedure
// of that name and kind in the loaded macros (or in the handler's own module) is looked up at each
// use, so a handler made before its macro is loaded finds it afterwards. Implements IDispatch directly.
#include "host/HandlerPrototype.h"
#include "host/MacroCall.h"
#include "host/LateBoundObject.h"
#include <oaidl.h>

namespace brannoc {

class CodeUnit;
enum class RunState : int;

class Handler final : public LateBoundObject<Handler> {
public:
    enum Member : DISPID {
        kExists = 0,
        kCall = 1,
        kEvaluate = 2,
        kStart = 3,
        kStepInto = 4,
        kCallPA = 5,
        kEvaluatePA = 6,
        kStartPA = 7,
        kPrototype = 8,
        kProcName = 9,
        kIsModuleLoaded = 10,
    };

    // A new handler over the engine object (held); the caller owns the one reference.
    static Handler* Create(CodeUnit& engine, HandlerPrototype prototype);

    const HandlerPrototype& Prototype() const { return m_prototype; }

    HRESULT __stdcall GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) override;
    HRESULT __stdcall Invoke(DISPID member, REFIID id, LCID lcid, WORD flags, DISPPARAMS* parameters,
                             VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

    // Calls the bound procedure with arguments given as IDispatch gives them (event sinks use this).
    HRESULT CallWith(const GivenArguments& given, VARIANT* result, EXCEPINFO* exception, UINT* argumentError);

private:
    friend class LateBoundObject<Handler>;
    Handler(CodeUnit& engine, HandlerPrototype prototype);
    ~Handler();

    // The procedure the prototype names, when a loaded module has it.
    bool Bind(MacroCallTarget& target);
    HRESULT Describe(DISPID member, WORD flags, const DISPPARAMS& parameters, VARIANT* result);
    HRESULT PutStepInto(WORD flags, const DISPPARAMS& parameters);
    HRESULT Call(DISPID member, WORD flags, const DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* exception,
                 UINT* argumentError);
    // Start and StartPA: the procedure begins as a run of its own (HandlerStart.cpp).
    HRESULT StartWith(const GivenArguments& given, EXCEPINFO* exception, UINT* argumentError);
    void RunStarted(RunState state);
    std::string QualifiedName() const;
    std::wstring ProcName();
    // ProcName as the API trace writes it (a named project's module as "project>module").
    std::wstring TracedProcName();

    CodeUnit& m_engine;
    HandlerPrototype m_prototype;
    bool m_stepInto = false;
};

} // namespace brannoc
