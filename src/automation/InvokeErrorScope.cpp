#include "automation/InvokeErrorScope.h"

#include <new>

namespace brannoc::automation {
namespace {

thread_local InvokeErrorScope* t_innermost = nullptr;

BSTR CopyOrNull(std::wstring_view text)
{
    return text.empty() ? nullptr : SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

} // namespace

InvokeErrorScope* OpenInvokeErrorScope(EXCEPINFO* record)
{
    auto* scope = new (std::nothrow) InvokeErrorScope{record, false, t_innermost};
    if (scope)
        t_innermost = scope;
    return scope;
}

HRESULT CloseInvokeErrorScope(HRESULT status)
{
    InvokeErrorScope* scope = t_innermost;
    if (!scope)
        return status;
    t_innermost = scope->previous;
    bool raised = scope->raised;
    delete scope;
    return raised ? DISP_E_EXCEPTION : status;
}

bool RaiseInInvokeErrorScope(const RaisedError& error)
{
    InvokeErrorScope* scope = t_innermost;
    if (!scope)
        return false;
    if (EXCEPINFO* record = scope->record) {
        // A second raise in the same call replaces the first; before the first the record's contents
        // are the caller's and are not ours to free.
        if (scope->raised) {
            SysFreeString(record->bstrSource);
            SysFreeString(record->bstrDescription);
            SysFreeString(record->bstrHelpFile);
        }
        *record = EXCEPINFO{};
        record->wCode = error.code;
        record->scode = error.status;
        record->bstrSource = CopyOrNull(error.source);
        record->bstrDescription = CopyOrNull(error.description);
        record->bstrHelpFile = CopyOrNull(error.helpFile);
        record->dwHelpContext = error.helpContext;
    }
    scope->raised = true;
    return true;
}

} // namespace brannoc::automation
