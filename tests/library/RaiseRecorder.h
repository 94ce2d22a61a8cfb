#pragma once
// Test helper: installs a raise handler that records the numbers raised while it lives.
#include "values/ValueError.h"

#include <vector>

namespace brannoc::test {

class RaiseRecorder final {
public:
    RaiseRecorder() : m_previous(SetRaiseHandler(&Record)) { Numbers().clear(); }
    ~RaiseRecorder() { SetRaiseHandler(m_previous); }
    RaiseRecorder(const RaiseRecorder&) = delete;
    RaiseRecorder& operator=(const RaiseRecorder&) = delete;

    // The last number raised, or 0 when none was.
    long Last() const { return Numbers().empty() ? 0 : Numbers().back(); }
    size_t Count() const { return Numbers().size(); }
    void Reset() { Numbers().clear(); }

private:
    static std::vector<long>& Numbers()
    {
        static std::vector<long> s_numbers;
        return s_numbers;
    }
    static void Record(long number) { Numbers().push_back(number); }

    RaiseFn m_previous = nullptr;
};

} // namespace brannoc::test
