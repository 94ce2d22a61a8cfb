#pragma once
// Exceptions raised from inside a method call: while a dispatch object's method runs (or between a
// host's OA_PreInvokeError and OA_PostInvokeError), errors raised on the thread go into the caller's
// exception record and the call answers DISP_E_EXCEPTION. Scopes nest per thread.
#include <windows.h>
#include <oaidl.h>

#include <string_view>

namespace brannoc::automation {

struct InvokeErrorScope {
    EXCEPINFO* record = nullptr;   // the caller's record; may be null
    bool raised = false;
    InvokeErrorScope* previous = nullptr;
};

// Opens a scope on this thread; the innermost scope receives raised errors until it is closed.
InvokeErrorScope* OpenInvokeErrorScope(EXCEPINFO* record);
// Closes the innermost scope and gives back status, or DISP_E_EXCEPTION when an error was raised in it.
HRESULT CloseInvokeErrorScope(HRESULT status);

struct RaisedError {
    WORD code = 0;
    SCODE status = 0;
    std::wstring_view source;
    std::wstring_view description;
    std::wstring_view helpFile;
    DWORD helpContext = 0;
};

// Records error in the innermost scope; false when the thread has no open scope.
bool RaiseInInvokeErrorScope(const RaisedError& error);

// Opens a scope for the lifetime of the holder (a dispatch object's Invoke).
class ScopedInvokeErrors final {
public:
    explicit ScopedInvokeErrors(EXCEPINFO* record) { OpenInvokeErrorScope(record); }
    ~ScopedInvokeErrors() { if (!m_closed) CloseInvokeErrorScope(S_OK); }
    ScopedInvokeErrors(const ScopedInvokeErrors&) = delete;
    ScopedInvokeErrors& operator=(const ScopedInvokeErrors&) = delete;
    HRESULT Close(HRESULT status) { m_closed = true; return CloseInvokeErrorScope(status); }

private:
    bool m_closed = false;
};

} // namespace brannoc::automation
