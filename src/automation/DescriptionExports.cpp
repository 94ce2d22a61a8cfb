// The exported functions over dispatch classes made from text descriptions: type objects, dispatch
// objects over implementation objects, their records, and errors raised from inside their methods.
#include "automation/AnsiBstr.h"
#include "automation/DescribedDispatch.h"
#include "automation/DescribedType.h"
#include "automation/ExportBoundary.h"
#include "automation/InvokeErrorScope.h"
#include "host/AnsiText.h"

#include "brannoc.h"

using namespace brannoc;
using namespace brannoc::automation;

namespace {

std::wstring WideOrEmpty(LPCSTR text) { return text ? WideFromAnsi(text) : std::wstring(); }
std::wstring_view ViewOrEmpty(LPCWSTR text) { return text ? std::wstring_view(text) : std::wstring_view(); }

// Records the error in the innermost method call of the thread; outside any, shows its description.
void RaiseError(const RaisedError& error)
{
    if (RaiseInInvokeErrorScope(error))
        return;
    std::wstring description(error.description);
    MessageBoxW(nullptr, description.c_str(), L"RaiseError not in object.", MB_TASKMODAL | MB_OK);
}

void RaiseWide(WORD code, SCODE status, std::wstring_view source, std::wstring_view description,
               std::wstring_view helpFile, DWORD helpContext)
{
    RaiseError(RaisedError{code, status, source, description, helpFile, helpContext});
}

} // namespace

extern "C" {

ITypeInfo* __stdcall OA_CreateTypeA(LPCSTR description)
{
    return AtExportBoundary<ITypeInfo*>(nullptr, [&]() -> ITypeInfo* {
        return DescribedType::Create(WideOrEmpty(description), true);
    });
}

ITypeInfo* __stdcall OA_CreateTypeW(LPCWSTR description)
{
    return AtExportBoundary<ITypeInfo*>(nullptr, [&]() -> ITypeInfo* {
        return DescribedType::Create(ViewOrEmpty(description), false);
    });
}

IDispatch* __stdcall OA_CreateDispatch(ITypeInfo* type, OA_DESTROYPROC destroy, void* implementation, void* userData)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&]() -> IDispatch* {
        return DescribedDispatch::Create(type, destroy, implementation, userData);
    });
}

void* __stdcall OA_GetDispatchData(IUnknown* dispatch)
{
    DescribedDispatch* object = DescribedDispatch::From(dispatch);
    return object ? object->Implementation() : nullptr;
}

METHODDATA* __stdcall OA_GetMethodData(ITypeInfo* type, DISPID id, WORD kind)
{
    DescribedType* described = DescribedType::From(type);
    return described ? described->FindMethod(id, kind) : nullptr;
}

// Errors carry the 16-bit code in wCode (OA_RaiseError) or a status in scode (OA_RaiseError2).
void __stdcall OA_RaiseErrorA(LONG code, LPCSTR source, LPCSTR description, LPCSTR helpFile, DWORD helpContext)
{
    AtExportBoundary([&] {
        RaiseWide(static_cast<WORD>(code), 0, WideOrEmpty(source), WideOrEmpty(description), WideOrEmpty(helpFile),
                  helpContext);
    });
}

void __stdcall OA_RaiseErrorW(LONG code, LPCWSTR source, LPCWSTR description, LPCWSTR helpFile, DWORD helpContext)
{
    AtExportBoundary([&] {
        RaiseWide(static_cast<WORD>(code), 0, ViewOrEmpty(source), ViewOrEmpty(description), ViewOrEmpty(helpFile),
                  helpContext);
    });
}

void __stdcall OA_RaiseError2A(LONG status, LPCSTR source, LPCSTR description, LPCSTR helpFile, DWORD helpContext)
{
    AtExportBoundary([&] {
        RaiseWide(0, status, WideOrEmpty(source), WideOrEmpty(description), WideOrEmpty(helpFile), helpContext);
    });
}

void __stdcall OA_RaiseError2W(LONG status, LPCWSTR source, LPCWSTR description, LPCWSTR helpFile, DWORD helpContext)
{
    AtExportBoundary([&] {
        RaiseWide(0, status, ViewOrEmpty(source), ViewOrEmpty(description), ViewOrEmpty(helpFile), helpContext);
    });
}

void* __stdcall OA_PreInvokeError(EXCEPINFO* record) { return OpenInvokeErrorScope(record); }

HRESULT __stdcall OA_PostInvokeError(HRESULT status) { return CloseInvokeErrorScope(status); }

} // extern "C"
