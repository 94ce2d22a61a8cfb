#pragma once
// Safe arrays of every element kind as the language uses them: creation with every element at its
// zero value, re-dimensioning that keeps elements, resetting a fixed array, deep copies and
// destruction. Fixed-size arrays carry FADF_FIXEDSIZE, so that ReDim and array assignment can refuse
// them at run time. Elements that own something (strings, Variants, objects, records) are released
// and copied through the engine's own holders, never through the platform's record handling, which
// Wine gets wrong when it re-dimensions arrays of records.
#include <windows.h>
#include <oaidl.h>

namespace brannoc {

class Variant;

// What the elements of an array are.
struct ElementKind {
    VARTYPE tag = VT_VARIANT;         // numeric kinds, VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_VARIANT, VT_RECORD
    UINT fixedLength = 0;             // characters of a fixed-length String element; 0 for others
    IRecordInfo* record = nullptr;    // the record type of VT_RECORD elements (not owned)
};

// The address of the element at indexes (one per dimension, left to right as written), or null when
// an index lies outside its dimension's bounds. The array must not be re-dimensioned while the address
// is used.
void* ElementAddress(SAFEARRAY* array, const LONG* indexes) noexcept;

// The number of elements of every dimension together (0 when a dimension is empty).
ULONG ElementCount(const SAFEARRAY* array) noexcept;
// Whether the array was declared with bounds (ReDim and array assignment refuse it).
bool IsFixedArray(const SAFEARRAY* array) noexcept;
// The element kind recorded in an array (a fixed length is not recorded: such elements read as Strings).
ElementKind ElementKindOf(SAFEARRAY* array) noexcept;

// A new array of `dimensions` dimensions from lower[i] to upper[i] (left to right as written), every
// element at its zero value; `fixed` marks it fixed-size. Null when it could not be allocated.
SAFEARRAY* CreateArray(const ElementKind& kind, const LONG* lower, const LONG* upper, UINT dimensions, bool fixed);

// ReDim Preserve: gives the last dimension the bounds lower..upper; elements that remain keep their
// values, new ones start at their zero value, dropped ones are released. False when memory ran out
// (the array is then unchanged).
[[nodiscard]] bool ResizeLastDimension(SAFEARRAY* array, const ElementKind& kind, LONG lower, LONG upper);

// Erase of a fixed array: every element back to its zero value (0, "", a blank fixed-length string,
// Empty, Nothing, a record of zero values). False when memory ran out.
[[nodiscard]] bool ResetArray(SAFEARRAY* array, const ElementKind& kind);

// A deep copy of source, always a dynamic array (the fixed-size mark is not copied). Null when memory
// ran out; a null source gives null.
SAFEARRAY* CopyArray(SAFEARRAY* source);

// Makes value a copy of array, an array of elementTag elements; a null array (not dimensioned) gives an
// array of that kind without a descriptor. False when memory ran out (value is then unchanged).
[[nodiscard]] bool CopyArrayInto(SAFEARRAY* array, VARTYPE elementTag, Variant& value);

// Releases every element and the array.
void DestroyArray(SAFEARRAY* array) noexcept;

// The array that an assignment of value to an array of kind stores: value's own array when value holds
// one of that element kind (taken over when value owns it, else copied; null when it is not
// dimensioned), or the bytes of a String for a Byte array (lower bound 0). Answers 0 and the array in
// result, or the number of the error to raise:
// 10080 for another kind, 10021 when memory ran out.
long TakeArrayFor(const ElementKind& kind, Variant& value, SAFEARRAY*& result);

// Sets `count` elements of `size` bytes from `first` (zero bits) to the zero value of kind. False when
// memory ran out.
[[nodiscard]] bool InitializeElements(void* first, ULONG count, ULONG size, const ElementKind& kind);
// Releases what `count` elements hold, leaving zero bits.
void ReleaseElements(void* first, ULONG count, ULONG size, const ElementKind& kind) noexcept;

} // namespace brannoc
