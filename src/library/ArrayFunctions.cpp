// Array makes a Variant array of its arguments; LBound and UBound give the bounds of a dimension.
#include "library/BuiltinGroups.h"
#include "library/BuiltinArguments.h"
#include "values/ValueError.h"

namespace brannoc {

namespace {

// Array(values...): a one-dimensional array of Variants with lower bound 0.
bool MakeArray(BuiltinArguments& arguments, BuiltinResult& result)
{
    const int count = arguments.Count();
    SafeArray array(SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(count)));
    if (!array.Get())
        return RaiseValueError(kErrorOutOfMemory);
    for (int i = 0; i < count; ++i) {
        Variant* value = nullptr;
        if (!arguments.OwnValue(i, value))
            return false;
        LONG index = i;
        if (FAILED(SafeArrayPutElement(array.Get(), &index, &value->Raw())))
            return RaiseValueError(kErrorOutOfMemory);
    }
    Variant made;
    made.SetArray(array.Detach(), VT_VARIANT);
    result.SetVariant(std::move(made));
    return true;
}

// The array an argument holds (by-reference values followed); false after raising 10080 when it holds
// no array, or 10022 when its array is not dimensioned.
bool ArrayIn(const Variant& value, SAFEARRAY*& array)
{
    const VARIANT& raw = *FollowByRefChain(&value.Raw());
    if ((raw.vt & VT_ARRAY) == 0)
        return RaiseValueError(kErrorTypeMismatch);
    array = (raw.vt & VT_BYREF) ? (raw.pparray ? *raw.pparray : nullptr) : raw.parray;
    return array || RaiseValueError(kErrorArrayNotDimensioned);
}

template <bool kUpper>
bool Bound(BuiltinArguments& arguments, BuiltinResult& result)
{
    const Variant* value = nullptr;
    SAFEARRAY* array = nullptr;
    if (!arguments.Value(0, value) || !ArrayIn(*value, array))
        return false;
    LONG dimension = 1;
    if (arguments.IsGiven(1) && !arguments.Long(1, dimension))
        return false;
    LONG bound = 0;
    const HRESULT status = dimension < 1 ? E_INVALIDARG
                           : kUpper      ? SafeArrayGetUBound(array, static_cast<UINT>(dimension), &bound)
                                         : SafeArrayGetLBound(array, static_cast<UINT>(dimension), &bound);
    if (FAILED(status))
        return RaiseValueError(kErrorArrayIndexOutOfRange);
    result.SetLong(bound);
    return true;
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Array, ResultKind::kVariant, "?", "ArgList", kBuiltinAnyCount, 0b1, &MakeArray),
    Function(Token::LBound, ResultKind::kLong, "a&", "ArrayVar Dimension", 0, 0b10, &Bound<false>),
    Function(Token::UBound, ResultKind::kLong, "a&", "ArrayVar Dimension", 0, 0b10, &Bound<true>),
};

} // namespace

BuiltinGroup ArrayFunctions() { return kRecords; }

} // namespace brannoc
