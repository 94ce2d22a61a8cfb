#pragma once
// References into the storage of arrays that entries of the value stack hold: the record of a With
// block on an element of an array of records, a record element passed by reference, an element passed
// by reference through its copy. While such a
// reference lives, the arrays it points into must keep their storage; statements that would release or
// move that storage (ReDim, array assignment) ask here first and refuse.
//
// Entries are not removed when the value stack lets go of a reference: each one remembers its slot and
// the address it holds, and counts only while that slot still holds the same reference. Stale entries
// are dropped whenever the list is consulted or grows.
#include "exec/ValueStack.h"

#include <windows.h>

#include <cstddef>
#include <vector>

namespace brannoc {

class ElementReferences final {
public:
    // Notes that the value-stack entry at slot refers to address, inside each of the arrays.
    void Note(const ValueStack& values, std::size_t slot, const void* address, SAFEARRAY* const* arrays, int count);
    // True when an entry of the value stack still refers into array's storage.
    [[nodiscard]] bool IsReferenced(const ValueStack& values, const SAFEARRAY* array);

private:
    struct Reference {
        std::size_t slot;
        const void* address;
        const SAFEARRAY* array;
    };
    static bool IsLive(const ValueStack& values, const Reference& reference);
    void DropStale(const ValueStack& values);

    std::vector<Reference> m_references;
};

} // namespace brannoc
