#include "exec/ValueStack.h"

#include <new>
#include <utility>

namespace brannoc {

namespace {
constexpr std::size_t kInitialCapacity = 256;
}

ValueStack::~ValueStack() { delete[] m_slots; }

void ValueStack::Swap(ValueStack& other) noexcept
{
    std::swap(m_slots, other.m_slots);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
}

bool ValueStack::Grow()
{
    std::size_t capacity = m_capacity ? m_capacity * 2 : kInitialCapacity;
    Variant* grown = new (std::nothrow) Variant[capacity];
    if (!grown)
        return false;
    for (std::size_t i = 0; i < m_size; ++i)
        grown[i] = std::move(m_slots[i]);
    delete[] m_slots;
    m_slots = grown;
    m_capacity = capacity;
    return true;
}

} // namespace brannoc
