#include "values/StringCapacity.h"

#include "values/Operators.h"
#include "values/ValueError.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <objbase.h>

namespace brannoc {
namespace {

// The longest string the platform allocates: the byte count prefix is a 32-bit value and the block
// also holds the prefix and a terminator.
constexpr UINT kMaxStringLength = 0x7FFFFFF0u / sizeof(WCHAR);

unsigned long s_appendAllocations = 0;

// The task allocator, which owns every BSTR block. The platform keeps it for the life of the process.
IMalloc* TaskAllocator() noexcept
{
    static IMalloc* s_allocator = [] {
        IMalloc* allocator = nullptr;
        return SUCCEEDED(CoGetMalloc(1, &allocator)) ? allocator : nullptr;
    }();
    return s_allocator;
}

// A BSTR block starts with the 32-bit byte count of the text, just before the first character.
BYTE* BlockOf(BSTR text) noexcept { return reinterpret_cast<BYTE*>(text) - sizeof(DWORD); }

} // namespace

UINT StringCapacity(BSTR text) noexcept
{
    if (!text)
        return 0;
    UINT length = TextLength(text);
    IMalloc* allocator = TaskAllocator();
    if (!allocator)
        return length;
    SIZE_T block = allocator->GetSize(BlockOf(text));
    if (block == static_cast<SIZE_T>(-1) || block < sizeof(DWORD) + sizeof(WCHAR))
        return length;
    SIZE_T room = (block - sizeof(DWORD) - sizeof(WCHAR)) / sizeof(WCHAR);
    return room > length ? static_cast<UINT>(std::min<SIZE_T>(room, kMaxStringLength)) : length;
}

bool AppendToString(Variant& target, std::wstring_view tail)
{
    BSTR text = target.String();
    UINT length = TextLength(text);
    if (tail.empty())
        return true;
    if (tail.size() > kMaxStringLength - length)
        return RaiseValueError(kErrorOutOfMemory);
    UINT needed = length + static_cast<UINT>(tail.size());
    if (text && needed <= StringCapacity(text)) {
        // tail may be part of the text itself; the two ranges never overlap.
        std::wmemcpy(text + length, tail.data(), tail.size());
        SetUsedLength(text, needed);
        return true;
    }
    UINT room = std::max(needed, length <= kMaxStringLength / 2 ? length * 2 : kMaxStringLength);
    BSTR grown = SysAllocStringLen(nullptr, room);
    ++s_appendAllocations;
    if (!grown)
        return RaiseValueError(kErrorOutOfMemory);
    if (length)
        std::wmemcpy(grown, text, length);
    std::wmemcpy(grown + length, tail.data(), tail.size());
    SetUsedLength(grown, needed);
    target.SetString(grown); // frees the old block, which tail may have pointed into
    return true;
}

bool AssignText(VARIANT& storage, std::wstring_view text, bool& stored)
{
    stored = false;
    VARIANT* end = FollowByRefChain(&storage);
    BSTR* slot = end->vt == VT_BSTR ? &end->bstrVal : end->vt == (VT_BYREF | VT_BSTR) ? end->pbstrVal : nullptr;
    if (!slot && ((end->vt & VT_BYREF) || !OwnsNothing(end->vt)))
        return true;
    if (text.size() > kMaxStringLength)
        return RaiseValueError(kErrorOutOfMemory);
    const auto length = static_cast<UINT>(text.size());
    BSTR old = slot ? *slot : nullptr;
    if (old && (length <= TextLength(old) || length <= StringCapacity(old))) {
        // The text may be part of the stored string.
        if (text.data() != old)
            MoveText(old, text.data(), length);
        SetUsedLength(old, length);
        stored = true;
        return true;
    }
    BSTR fresh = SysAllocStringLen(text.data(), length);
    if (!fresh)
        return RaiseValueError(kErrorOutOfMemory);
    if (slot) {
        *slot = fresh;
        SysFreeString(old);
    } else {
        end->vt = VT_BSTR;
        end->bstrVal = fresh;
    }
    stored = true;
    return true;
}

bool AppendToStorage(VARIANT& storage, const Variant& right)
{
    VARIANT* end = FollowByRefChain(&storage);
    BSTR* slot = end->vt == VT_BSTR ? &end->bstrVal : end->vt == (VT_BYREF | VT_BSTR) ? end->pbstrVal : nullptr;
    if (slot == nullptr) {
        if (end->vt & VT_BYREF)
            return RaiseValueError(kErrorTypeMismatch);
        Variant value;
        if (!value.CopyFrom(*end))
            return RaiseValueError(CopyFailure(*end));
        if (!BinaryOperation(OperationId::kConcatenate, value, right))
            return false;
        Variant old;
        old.Attach(*end);
        value.Detach(*end);
        return true;
    }
    // The holder borrows the stored string without taking it out of storage, so a right operand that
    // is the same variable still reads it. The appended string (the old block or a new one, the old
    // block then freed) is written back whether or not the operation succeeded.
    Variant holder;
    holder.Raw().vt = VT_BSTR;
    holder.Raw().bstrVal = *slot;
    const bool appended = BinaryOperation(OperationId::kConcatenate, holder, right);
    if (holder.Tag() == VT_BSTR)
        *slot = holder.String();
    holder.Raw().vt = VT_EMPTY; // the string belongs to storage again
    return appended;
}

unsigned long StringAppendAllocations() noexcept { return s_appendAllocations; }

} // namespace brannoc
