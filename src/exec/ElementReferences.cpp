#include "exec/ElementReferences.h"

#include <algorithm>
#include <new>

namespace brannoc {

namespace {

// Stale entries are looked for once the list holds this many.
constexpr std::size_t kPruneThreshold = 16;

} // namespace

bool ElementReferences::IsLive(const ValueStack& values, const Reference& reference)
{
    if (reference.slot >= values.Size())
        return false;
    const VARIANT& held = values.At(reference.slot).Raw();
    return (held.vt & VT_BYREF) != 0 && held.byref == reference.address;
}

void ElementReferences::DropStale(const ValueStack& values)
{
    std::erase_if(m_references, [&](const Reference& reference) { return !IsLive(values, reference); });
}

void ElementReferences::Note(const ValueStack& values, std::size_t slot, const void* address,
                             SAFEARRAY* const* arrays, int count)
{
    if (m_references.size() >= kPruneThreshold)
        DropStale(values);
    try {
        for (int i = 0; i < count; ++i)
            m_references.push_back(Reference{slot, address, arrays[i]});
    } catch (const std::bad_alloc&) {
        // Without the note the array is merely not protected; the reference itself is fine.
    }
}

bool ElementReferences::IsReferenced(const ValueStack& values, const SAFEARRAY* array)
{
    if (m_references.empty() || !array)
        return false;
    DropStale(values);
    return std::any_of(m_references.begin(), m_references.end(),
                       [&](const Reference& reference) { return reference.array == array; });
}

} // namespace brannoc
