#pragma once
// Owns one reference of a COM interface.
#include <unknwn.h>
#include <utility>

namespace brannoc {

template <typename T>
class ComRef final {
public:
    ComRef() = default;
    // Adopts a reference the caller already owns.
    static ComRef Adopt(T* pointer) { ComRef ref; ref.m_pointer = pointer; return ref; }
    // Takes a new reference of a borrowed pointer.
    static ComRef Share(T* pointer) { if (pointer) pointer->AddRef(); return Adopt(pointer); }
    ComRef(const ComRef& other) : m_pointer(other.m_pointer) { if (m_pointer) m_pointer->AddRef(); }
    ComRef(ComRef&& other) noexcept : m_pointer(std::exchange(other.m_pointer, nullptr)) {}
    ComRef& operator=(ComRef other) noexcept { std::swap(m_pointer, other.m_pointer); return *this; }
    ~ComRef() { if (m_pointer) m_pointer->Release(); }

    T* Get() const { return m_pointer; }
    T* operator->() const { return m_pointer; }
    explicit operator bool() const { return m_pointer != nullptr; }
    // Hands the reference to the caller.
    [[nodiscard]] T* Detach() { return std::exchange(m_pointer, nullptr); }
    // Address for an out parameter; the current reference is released first.
    T** Out() { *this = ComRef(); return &m_pointer; }

private:
    T* m_pointer = nullptr;
};

} // namespace brannoc
