#pragma once
// The engine object: what a host holds. Implements the dual interface _CodeUnit; late-bound calls go
// through the type information's dispatcher to the same table.
#include "brannoc.h"
#include "host/EngineContext.h"
#include "values/ComRef.h"
#include <memory>

namespace brannoc {

class CodeUnit final : public _CodeUnit {
public:
    // Makes an engine object over the CodeUnit class type (held). Null when the type has no dual
    // interface or memory runs out. The caller owns the one reference.
    static CodeUnit* Create(ITypeInfo* classType);

    unsigned long Identifier() const { return m_identifier; }
    EngineContext& Context() { return *m_context; }
    // The engine's Err object as an automation object (held by the engine object).
    IDispatch* ErrObject() const { return m_errObject.Get(); }
    IDispatch* AsDispatch() { return this; }
    const GUID& InstanceGuid() const { return m_instanceGuid; }

    // IUnknown
    HRESULT __stdcall QueryInterface(REFIID id, void** object) override;
    ULONG __stdcall AddRef() override;
    ULONG __stdcall Release() override;
    // IDispatch
    HRESULT __stdcall GetTypeInfoCount(UINT* count) override;
    HRESULT __stdcall GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
    HRESULT __stdcall GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) override;
    HRESULT __stdcall Invoke(DISPID member, REFIID id, LCID lcid, WORD flags, DISPPARAMS* parameters,
                             VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

    // _CodeUnit
    HRESULT __stdcall get_CallBack(IDispatch** result) override;
    HRESULT __stdcall get_CallersLine(short depth, BSTR* result) override;
    HRESULT __stdcall get_Caption(BSTR* result) override;
    HRESULT __stdcall put_Caption(BSTR caption) override;
    HRESULT __stdcall get_CurrentLine(BSTR* result) override;
    HRESULT __stdcall get_DefaultCallBack(IDispatch** result) override;
    HRESULT __stdcall get_DoEvents(VARIANT_BOOL* result) override;
    HRESULT __stdcall put_DoEvents(VARIANT_BOOL on) override;
    HRESULT __stdcall get_ErrorDesc(BSTR* result) override;
    HRESULT __stdcall put_ErrorDesc(BSTR description) override;
    HRESULT __stdcall get_ErrorLimit(short* result) override;
    HRESULT __stdcall put_ErrorLimit(short limit) override;
    HRESULT __stdcall get_ErrorLine(BSTR* result) override;
    HRESULT __stdcall get_ErrorLineNum(short* result) override;
    HRESULT __stdcall get_ErrorMacroName(BSTR* result) override;
    HRESULT __stdcall get_ErrorOffset(short* result) override;
    HRESULT __stdcall get_Evaluate(BSTR expression, short depth, BSTR* result) override;
    HRESULT __stdcall put_Evaluate(BSTR expression, short depth, BSTR value) override;
    HRESULT __stdcall get_EvaluateObject(BSTR expression, short depth, IDispatch** result) override;
    HRESULT __stdcall get_Evaluating(VARIANT_BOOL* result) override;
    HRESULT __stdcall get_ExtensionType(short index, IUnknown** result) override;
    HRESULT __stdcall get_ExtensionTypeName(short index, BSTR* result) override;
    HRESULT __stdcall get_Fire(VARIANT_BOOL debugging, IDispatch** result) override;
    HRESULT __stdcall get_HelpFile(BSTR* result) override;
    HRESULT __stdcall get_IsActive(VARIANT_BOOL* result) override;
    HRESULT __stdcall get_IsIdle(VARIANT_BOOL* result) override;
    HRESULT __stdcall get_IsPaused(VARIANT_BOOL* result) override;
    HRESULT __stdcall get_IsStopped(VARIANT_BOOL* result) override;
    HRESULT __stdcall get_Keywords(BSTR* result) override;
    HRESULT __stdcall get_LineNum(short* result) override;
    HRESULT __stdcall put_LineNum(short line) override;
    HRESULT __stdcall get_MacroName(BSTR* result) override;
    HRESULT __stdcall get_StackDepth(short* result) override;
    HRESULT __stdcall put_StackDepth(short depth) override;
    HRESULT __stdcall get_Version(BSTR* result) override;
    HRESULT __stdcall AddExtension(BSTR prefix, IDispatch* extension) override;
    HRESULT __stdcall Call0(BSTR subName, VARIANT_BOOL* result) override;
    HRESULT __stdcall Call1(BSTR subName, VARIANT* arg1, VARIANT_BOOL* result) override;
    HRESULT __stdcall Call2(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT_BOOL* result) override;
    HRESULT __stdcall Call3(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT* arg3, VARIANT_BOOL* result) override;
    HRESULT __stdcall Call4(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT* arg3, VARIANT* arg4,
                            VARIANT_BOOL* result) override;
    HRESULT __stdcall Call5(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT* arg3, VARIANT* arg4, VARIANT* arg5,
                            VARIANT_BOOL* result) override;
    HRESULT __stdcall Continue(VARIANT_BOOL* result) override;
    HRESULT __stdcall Halt(VARIANT_BOOL* result) override;
    HRESULT __stdcall HaltAll(VARIANT_BOOL* result) override;
    HRESULT __stdcall Load(BSTR macroName, VARIANT_BOOL* result) override;
    HRESULT __stdcall Run(short depth, VARIANT_BOOL* result) override;
    HRESULT __stdcall SetCallBack(IDispatch* callBack) override;
    HRESULT __stdcall Start(BSTR macroName, VARIANT_BOOL* result) override;
    HRESULT __stdcall Step(VARIANT_BOOL* result) override;
    HRESULT __stdcall Stop(VARIANT_BOOL* result) override;
    HRESULT __stdcall ToggleBreak(BSTR macroName, short line, VARIANT_BOOL* result) override;
    HRESULT __stdcall Unload(BSTR macroName, VARIANT_BOOL* result) override;
    HRESULT __stdcall get_BlockedKeywords(BSTR* result) override;
    HRESULT __stdcall put_BlockedKeywords(BSTR keywords) override;
    HRESULT __stdcall get_LoadedMacroName(short index, BSTR* result) override;
    HRESULT __stdcall CreateHandler(BSTR prototype, IDispatch** result) override;
    HRESULT __stdcall get_IsMacro(BSTR macroName, VARIANT_BOOL* result) override;
    HRESULT __stdcall Shutdown(VARIANT_BOOL* result) override;
    HRESULT __stdcall RemoveExtensions(BSTR prefix, VARIANT_BOOL* result) override;
    HRESULT __stdcall get_Prototypes(BSTR prefix, BSTR* result) override;
    HRESULT __stdcall Rename(BSTR oldMacroName, BSTR newMacroName, VARIANT_BOOL* result) override;
    HRESULT __stdcall get_MacroKeywords(BSTR macroName, BSTR* result) override;
    HRESULT __stdcall CreateHandlers(BSTR prefix, IDispatch* eventObject, IDispatch** result) override;
    HRESULT __stdcall get_IsMacroActive(BSTR macroName, VARIANT_BOOL* result) override;
    HRESULT __stdcall Macro(BSTR macroName, VARIANT_BOOL createNew, IDispatch** result) override;
    HRESULT __stdcall get_BreakLineNum(BSTR macroName, short index, short* result) override;
    HRESULT __stdcall AddExtensionEx(BSTR prefix, IDispatch* extension, VARIANT_BOOL* result) override;
    HRESULT __stdcall get_ExtensionTypeEx(BSTR macro, short index, IUnknown** result) override;
    HRESULT __stdcall get_ExtensionTypeNameEx(BSTR macro, short index, BSTR* result) override;
    HRESULT __stdcall get_ExtensionTypes(BSTR macro, VARIANT* types, BSTR* result) override;
    HRESULT __stdcall get_ErrorNumber(long* result) override;
    HRESULT __stdcall get_ErrorSource(BSTR* result) override;
    HRESULT __stdcall get_ErrorHelpFile(BSTR* result) override;
    HRESULT __stdcall get_ErrorHelpContext(long* result) override;
    HRESULT __stdcall ProjectCreate(BSTR projectName, VARIANT_BOOL* result) override;
    HRESULT __stdcall ProjectDestroy(BSTR projectName, VARIANT_BOOL* result) override;
    HRESULT __stdcall get_IsProject(BSTR projectName, VARIANT_BOOL* result) override;

    // Process-wide list of live engine objects, oldest first.
    static CodeUnit* First();
    CodeUnit* Next() const { return m_next; }
    // The thread that created the object.
    DWORD CreatorThread() const { return m_creatorThread; }

private:
    CodeUnit(ITypeInfo* classType, ITypeInfo* dispatchType);
    ~CodeUnit();

    // Runs work inside the entry guard; answers E_OUTOFMEMORY when the memory reserve is gone or an
    // allocation fails on the way.
    template <typename Work>
    HRESULT Entered(Work&& work);
    // A control request whose result is true when the state afterwards is `wanted`.
    // A halt kind (1 Halt, 2 HaltAll, 3 Shutdown) is deferred while host calls into macros are in progress.
    HRESULT ControlMethod(const wchar_t* operation, const std::wstring& argument, int request, long value,
                          RunState wanted, VARIANT_BOOL* result, int haltKind = 0);
    // Call0 ... Call5: the Sub's name and count host arguments.
    HRESULT CallSub(BSTR subName, VARIANT* const* arguments, int count, VARIANT_BOOL* result);
    void TraceEntry(const wchar_t* operation, const std::wstring& argument);
    // The result line (the object's address) and the exit line of an operation that gives an object.
    void TraceObjectResult(IDispatch* object);
    void TraceResult(bool result);
    bool HostEvaluation(const wchar_t* operation, Evaluator::Kind kind, BSTR expression, short depth,
                        const std::wstring& value, Variant& result);
    std::vector<automation::ExtensionTypeEntry> ExtensionTypesOf(BSTR macro);
    void Link();
    void Unlink();
    // Whether a live engine object other than this one was made on another thread than this one's.
    bool OthersOnOtherThreads() const;
    // Whether the live objects other than this one were all made on one thread (or none remain).
    bool OthersOnOneThread() const;
    IDispatch* DefaultCallBackObject();
    ComRef<ITypeInfo> HandlersInterface();

    unsigned long m_identifier;
    unsigned long m_references = 1;
    ComRef<ITypeInfo> m_classType;
    ComRef<ITypeInfo> m_dispatchType;
    std::unique_ptr<EngineContext> m_context;
    ComRef<IDispatch> m_errObject;
    ComRef<IDispatch> m_defaultCallBack;
    GUID m_instanceGuid{};
    DWORD m_creatorThread = GetCurrentThreadId();
    CodeUnit* m_previous = nullptr;
    CodeUnit* m_next = nullptr;
};

} // namespace brannoc
