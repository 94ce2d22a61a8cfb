#pragma once
// The engine-wide stack of values that expression nodes work on. Slots are Variant holders that stay
// constructed across pushes and pops: popping clears a slot, and the array only grows, so steady-state
// evaluation does not allocate. Growing moves the slots: pointers into the stack are valid only until
// the next push.
#include "values/Variant.h"

#include <cstddef>

namespace brannoc {

class ValueStack final {
public:
    ValueStack() = default;
    ValueStack(const ValueStack&) = delete;
    ValueStack& operator=(const ValueStack&) = delete;
    ~ValueStack();

    // A fresh Empty slot on top, or null when the stack could not grow.
    [[nodiscard]] Variant* Push()
    {
        if (m_size == m_capacity && !Grow())
            return nullptr;
        return &m_slots[m_size++];
    }
    // Clears the top slot and removes it; the stack must not be empty. The value leaves the slot before
    // it is released: releasing an object can run code (a terminator) that pushes onto this stack.
    void Pop()
    {
        Variant& slot = m_slots[--m_size];
        if (OwnsNothing(slot.Tag())) {
            slot.Raw().vt = VT_EMPTY;
            return;
        }
        Variant leaving(std::move(slot));
    }
    // Clears and removes every slot above size.
    void CutBack(std::size_t size)
    {
        while (m_size > size)
            Pop();
    }

    // Exchanges the contents with other (a nested run gets a stack of its own, so that references into
    // this one held by the code that started it stay valid).
    void Swap(ValueStack& other) noexcept;

    Variant& Top() noexcept { return m_slots[m_size - 1]; }
    Variant& At(std::size_t index) noexcept { return m_slots[index]; }
    const Variant& At(std::size_t index) const noexcept { return m_slots[index]; }
    std::size_t Size() const noexcept { return m_size; }
    bool IsEmpty() const noexcept { return m_size == 0; }

private:
    [[nodiscard]] bool Grow();

    Variant* m_slots = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

} // namespace brannoc
