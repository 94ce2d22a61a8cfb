#pragma once
// Scope of a call out of the engine (into an automation object, a server's creation, a moniker's
// binding): the engine lock is given up for the call so that the object may call back into the engine,
// and taken back when the scope ends.
#include "host/EntryGuard.h"

namespace brannoc::automation {

class OutsideCall final {
public:
    OutsideCall() : m_depth(EngineLock::Suspend()) {}
    ~OutsideCall() { EngineLock::Resume(m_depth); }
    OutsideCall(const OutsideCall&) = delete;
    OutsideCall& operator=(const OutsideCall&) = delete;

private:
    int m_depth;
};

} // namespace brannoc::automation
