#include "exec/ExecStack.h"

#include <cstdlib>
#include <cstring>

namespace brannoc {

namespace {
constexpr std::size_t kInitialCapacity = 64;
}

ExecStack::~ExecStack() { std::free(m_entries); }

bool ExecStack::Grow()
{
    std::size_t capacity = m_capacity ? m_capacity * 2 : kInitialCapacity;
    // ExecEntry is trivially copyable, so realloc may move the entries.
    void* grown = std::realloc(m_entries, capacity * sizeof(ExecEntry));
    if (!grown)
        return false;
    m_entries = static_cast<ExecEntry*>(grown);
    m_capacity = capacity;
    return true;
}

} // namespace brannoc
