#pragma once
// Scope guard for trial conversions and trial parses whose failure is an answer, not an error: no
// raise handler is installed while it lives, and the previous one comes back at its end.
#include "values/ValueError.h"

namespace brannoc {

class QuietRaise final {
public:
    QuietRaise() : m_previous(SetRaiseHandler(nullptr)) {}
    ~QuietRaise() { SetRaiseHandler(m_previous); }
    QuietRaise(const QuietRaise&) = delete;
    QuietRaise& operator=(const QuietRaise&) = delete;

private:
    RaiseFn m_previous;
};

} // namespace brannoc
