#pragma once
// The library function a Declare'd procedure is bound to at its first call: the library (held loaded
// until the procedure goes), the entry address and whether its strings are wide text.
#include <utility>

namespace brannoc {

class ExternalBinding final {
public:
    ExternalBinding() = default;
    ExternalBinding(ExternalBinding&& other) noexcept { *this = std::move(other); }
    ExternalBinding& operator=(ExternalBinding&& other) noexcept
    {
        std::swap(m_library, other.m_library);
        std::swap(m_entry, other.m_entry);
        std::swap(m_wideStrings, other.m_wideStrings);
        return *this;
    }
    ExternalBinding(const ExternalBinding&) = delete;
    ExternalBinding& operator=(const ExternalBinding&) = delete;
    ~ExternalBinding();

    bool IsBound() const { return m_entry != nullptr; }
    void* Entry() const { return m_entry; }
    bool WideStrings() const { return m_wideStrings; }

    // Binds to the entry of a library `library` names (the platform's module handle); the binding
    // releases the library when it goes.
    void Bind(void* library, void* entry, bool wideStrings)
    {
        m_library = library;
        m_entry = entry;
        m_wideStrings = wideStrings;
    }

private:
    void* m_library = nullptr;
    void* m_entry = nullptr;
    bool m_wideStrings = false;
};

} // namespace brannoc
