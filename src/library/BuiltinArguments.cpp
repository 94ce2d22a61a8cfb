#include "library/BuiltinArguments.h"

#include "values/Conversion.h"
#include "values/ValueError.h"

#include <vector>

namespace brannoc {

namespace {

// The VARIANT a value stands for: by-reference Variant chains followed; the result may still be a
// by-reference value of a fixed kind.
const VARIANT& Target(const Variant& value) { return *FollowByRefChain(&value.Raw()); }

bool IsNullValue(const Variant& value) { return Target(value).vt == VT_NULL; }

} // namespace

BuiltinArguments::BuiltinArguments(const BuiltinRecord& record, Variant* values, State* states, int count)
    : m_record(record), m_values(values), m_states(states), m_count(count)
{
    for (int i = 0; i < count; ++i) {
        if (states[i] == State::kMissing)
            values[i].SetError(kMissingArgumentStatus);
    }
}

bool BuiltinArguments::IsGiven(int index) const { return InRange(index) && m_states[index] != State::kMissing; }

bool BuiltinArguments::Evaluated(int index)
{
    if (!InRange(index))
        return RaiseValueError(kErrorInvalidArgument);
    switch (m_states[index]) {
    case State::kMissing:
    case State::kReady: return true;
    case State::kDeferred: return RaiseValueError(kErrorInvalidArgument);
    case State::kPending: break;
    }
    if (!EvaluateInto(index, m_values[index]))
        return false;
    m_states[index] = State::kReady;
    return true;
}

bool BuiltinArguments::Ready(int index)
{
    if (!Evaluated(index))
        return false;
    if (m_record.KindOf(index) == parameter_kind::kNullableString && IsNullValue(m_values[index])) {
        m_nullResult = true;
        return false;
    }
    return true;
}

bool BuiltinArguments::IsNull(int index, bool& isNull)
{
    if (!Evaluated(index))
        return false;
    isNull = IsNullValue(m_values[index]);
    return true;
}

bool BuiltinArguments::Value(int index, const Variant*& value)
{
    if (!Ready(index))
        return false;
    value = &m_values[index];
    return true;
}

bool BuiltinArguments::OwnValue(int index, Variant*& value)
{
    if (!Ready(index))
        return false;
    Variant& slot = m_values[index];
    if (slot.IsByRef()) {
        Variant copy;
        if (!copy.CopyIndirectFrom(slot.Raw()))
            return RaiseValueError(kErrorAutomation);
        slot = std::move(copy);
    }
    value = &slot;
    return true;
}

bool BuiltinArguments::Integer(int index, SHORT& value)
{
    if (!Ready(index))
        return false;
    const VARIANT& raw = Target(m_values[index]);
    if (raw.vt == VT_I2) {
        value = raw.iVal;
        return true;
    }
    Variant* own = nullptr;
    if (!OwnValue(index, own) || !ChangeType(*own, VT_I2))
        return false;
    value = own->Integer();
    return true;
}

bool BuiltinArguments::Long(int index, LONG& value)
{
    if (!Ready(index))
        return false;
    const VARIANT& raw = Target(m_values[index]);
    switch (raw.vt) {
    case VT_I4: value = raw.lVal; return true;
    case VT_I2: value = raw.iVal; return true;
    case VT_BYREF | VT_I4: value = *raw.plVal; return true;
    case VT_BYREF | VT_I2: value = *raw.piVal; return true;
    default: break;
    }
    Variant* own = nullptr;
    if (!OwnValue(index, own) || !ChangeType(*own, VT_I4))
        return false;
    value = own->Long();
    return true;
}

bool BuiltinArguments::Double(int index, double& value)
{
    if (!Ready(index))
        return false;
    const VARIANT& raw = Target(m_values[index]);
    switch (raw.vt) {
    case VT_R8: value = raw.dblVal; return true;
    case VT_I4: value = raw.lVal; return true;
    case VT_I2: value = raw.iVal; return true;
    case VT_BYREF | VT_R8: value = *raw.pdblVal; return true;
    default: break;
    }
    Variant* own = nullptr;
    if (!OwnValue(index, own) || !ChangeType(*own, VT_R8))
        return false;
    value = own->Double();
    return true;
}

bool BuiltinArguments::Boolean(int index, bool& value)
{
    if (!Ready(index))
        return false;
    const VARIANT& raw = Target(m_values[index]);
    if (raw.vt == VT_BOOL) {
        value = raw.boolVal != VARIANT_FALSE;
        return true;
    }
    Variant* own = nullptr;
    if (!OwnValue(index, own) || !ChangeType(*own, VT_BOOL))
        return false;
    value = own->Boolean() != VARIANT_FALSE;
    return true;
}

bool BuiltinArguments::StringValue(int index, BSTR& text)
{
    if (!Ready(index))
        return false;
    const VARIANT& raw = Target(m_values[index]);
    if (raw.vt == VT_BSTR) {
        text = raw.bstrVal;
        return true;
    }
    if (raw.vt == (VT_BYREF | VT_BSTR)) {
        text = raw.pbstrVal ? *raw.pbstrVal : nullptr;
        return true;
    }
    Variant* own = nullptr;
    if (!OwnValue(index, own) || !ChangeType(*own, VT_BSTR))
        return false;
    text = own->String();
    return true;
}

bool BuiltinArguments::String(int index, std::wstring_view& text)
{
    BSTR string = nullptr;
    if (!StringValue(index, string))
        return false;
    text = std::wstring_view(string ? string : L"", string ? SysStringLen(string) : 0u);
    return true;
}

bool BuiltinResult::SetString(std::wstring_view text)
{
    return m_target.SetString(text) || RaiseValueError(kErrorOutOfMemory);
}

bool BuiltinResult::SetFromArgument(BuiltinArguments& arguments, int index)
{
    if (arguments.IsDeferred(index)) {
        m_chosen = index;
        return true;
    }
    Variant* value = nullptr;
    if (!arguments.OwnValue(index, value))
        return false;
    m_target = std::move(*value);
    return true;
}

bool InvokeBuiltin(const BuiltinRecord& record, BuiltinArguments& arguments, Variant& result, int& chosen)
{
    chosen = -1;
    if (record.convert) {
        Variant* value = nullptr;
        if (!arguments.OwnValue(0, value)) {
            if (!arguments.NullResult())
                return false;
            result.SetNull();
            return true;
        }
        if (!record.convert(*value))
            return false;
        result = std::move(*value);
        return true;
    }
    BuiltinResult sink(result);
    if (!record.evaluate(arguments, sink)) {
        if (!arguments.NullResult())
            return false;
        result.SetNull();
        return true;
    }
    chosen = sink.ChosenArgument();
    return true;
}

namespace {

// Arguments that are constants known at compile time.
class ConstantArguments final : public BuiltinArguments {
public:
    using BuiltinArguments::BuiltinArguments;

protected:
    bool EvaluateInto(int, Variant&) override { return RaiseValueError(kErrorInvalidArgument); }
};

} // namespace

bool FoldBuiltin(const BuiltinRecord& record, const Variant* values, const bool* given, int count, Variant& result)
{
    std::vector<Variant> copies(static_cast<std::size_t>(count));
    std::vector<BuiltinArguments::State> states(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        states[at] = given[i] ? BuiltinArguments::State::kReady : BuiltinArguments::State::kMissing;
        if (given[i] && !copies[at].CopyFrom(values[i].Raw()))
            return false;
    }
    const RaiseFn previous = SetRaiseHandler(nullptr);
    ConstantArguments arguments(record, copies.data(), states.data(), count);
    int chosen = -1;
    const bool folded = InvokeBuiltin(record, arguments, result, chosen) && chosen < 0;
    (void)SetRaiseHandler(previous);
    return folded;
}

} // namespace brannoc
