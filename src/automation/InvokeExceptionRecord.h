#pragma once
// The error record (OA_ERROR) handed to an OA_Invoke... call that must stay silent: it owns the three
// strings the call may leave in it and frees them when it goes, and it tells whether the call reported
// an exception at all (as opposed to failing for another reason, which leaves the record untouched).
#include "brannoc.h"

namespace brannoc::automation {

class InvokeExceptionRecord final {
public:
    InvokeExceptionRecord() { m_record.wCode = m_record.wReserved = kUntouched; }
    ~InvokeExceptionRecord()
    {
        SysFreeString(m_record.bstrSource);
        SysFreeString(m_record.bstrDescription);
        SysFreeString(m_record.bstrHelpFile);
    }
    InvokeExceptionRecord(const InvokeExceptionRecord&) = delete;
    InvokeExceptionRecord& operator=(const InvokeExceptionRecord&) = delete;

    OA_ERROR* Receiver() { return &m_record; }

    // True once an invocation copied an exception in. An exception may carry nothing but its status, so
    // the record starts with a code no server gives alongside an empty reserved half and no strings.
    bool ExceptionReported() const
    {
        return m_record.wCode != kUntouched || m_record.wReserved != kUntouched || m_record.bstrSource ||
               m_record.bstrDescription || m_record.bstrHelpFile || m_record.dwHelpContext;
    }

private:
    static constexpr WORD kUntouched = 0xFFFF;
    OA_ERROR m_record{};
};

} // namespace brannoc::automation
