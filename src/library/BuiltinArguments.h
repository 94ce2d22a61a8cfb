#pragma once
// The argument interface and the result sink of built-in implementations. An implementation receives
// its arguments unevaluated and evaluates each one (at most once) in the kind it needs; it writes its
// result into the sink. Arguments and results that are numbers never allocate.
#include "library/BuiltinTable.h"
#include "values/Variant.h"

#include <cstdint>
#include <string_view>

namespace brannoc {

class BuiltinArguments {
public:
    enum class State : std::uint8_t {
        kMissing,  // left out: the value is the missing-argument Error value
        kPending,  // not evaluated yet
        kDeferred, // only the result sink may take it (the chosen argument of IIf and Choose)
        kReady,    // evaluated into its value
    };

    // values and states (count entries each) are the caller's storage; the states say which arguments
    // are missing, pending or deferred, and values of missing ones are filled in here.
    BuiltinArguments(const BuiltinRecord& record, Variant* values, State* states, int count);
    BuiltinArguments(const BuiltinArguments&) = delete;
    BuiltinArguments& operator=(const BuiltinArguments&) = delete;
    virtual ~BuiltinArguments() = default;

    const BuiltinRecord& Record() const { return m_record; }
    // Parameters of the record, or arguments written for an any-count built-in.
    int Count() const { return m_count; }
    // Whether the call gives argument index (an omitted optional one is not given).
    bool IsGiven(int index) const;
    bool IsDeferred(int index) const { return InRange(index) && m_states[index] == State::kDeferred; }

    // Evaluations. Each is false after raising an error, or, for a Null argument of an "S" parameter,
    // after noting that the result is Null (NullResult); an implementation then returns false at once.
    [[nodiscard]] bool IsNull(int index, bool& isNull);
    [[nodiscard]] bool Integer(int index, SHORT& value);
    [[nodiscard]] bool Long(int index, LONG& value);
    [[nodiscard]] bool Double(int index, double& value);
    [[nodiscard]] bool Boolean(int index, bool& value);
    // The text stays valid until the call ends.
    [[nodiscard]] bool String(int index, std::wstring_view& text);
    // The string itself (null for the empty string), for the byte-counting functions; it belongs to the
    // argument and stays valid until the call ends.
    [[nodiscard]] bool StringValue(int index, BSTR& text);
    // The value as evaluated; it may be a by-reference value that refers to the caller's variable, so
    // it must not be changed. It stays valid until the call ends.
    [[nodiscard]] bool Value(int index, const Variant*& value);
    // The value made self-contained (a reference is replaced by a copy of what it refers to), to be
    // changed in place.
    [[nodiscard]] bool OwnValue(int index, Variant*& value);

    // A Null argument of an "S" parameter was read: the call's result is Null.
    bool NullResult() const { return m_nullResult; }

protected:
    // Evaluates a pending argument into target. False after raising.
    [[nodiscard]] virtual bool EvaluateInto(int index, Variant& target) = 0;

private:
    bool InRange(int index) const { return index >= 0 && index < m_count; }
    // Evaluates argument index once; false after raising.
    [[nodiscard]] bool Evaluated(int index);
    // Evaluated, then the Null rule of "S" parameters.
    [[nodiscard]] bool Ready(int index);

    const BuiltinRecord& m_record;
    Variant* m_values;
    State* m_states;
    int m_count;
    bool m_nullResult = false;
};

class BuiltinResult final {
public:
    explicit BuiltinResult(Variant& target) : m_target(target) {}
    BuiltinResult(const BuiltinResult&) = delete;
    BuiltinResult& operator=(const BuiltinResult&) = delete;

    void SetNull() { m_target.SetNull(); }
    void SetInteger(SHORT value) { m_target.SetInteger(value); }
    void SetLong(LONG value) { m_target.SetLong(value); }
    void SetSingle(FLOAT value) { m_target.SetSingle(value); }
    void SetDouble(DOUBLE value) { m_target.SetDouble(value); }
    void SetBoolean(bool value) { m_target.SetBoolean(value); }
    // False after raising "Out of memory.".
    [[nodiscard]] bool SetString(std::wstring_view text);
    void SetString(Bstr&& text) { m_target.SetString(std::move(text)); }
    void SetVariant(Variant&& value) { m_target = std::move(value); }
    // The result is argument index, evaluated straight into the result; a deferred argument is only
    // noted as the chosen one (its code runs after the call). False after raising.
    [[nodiscard]] bool SetFromArgument(BuiltinArguments& arguments, int index);

    // The deferred argument chosen as the result, or -1.
    int ChosenArgument() const { return m_chosen; }
    Variant& Target() { return m_target; }

private:
    Variant& m_target;
    int m_chosen = -1;
};

// Runs record's implementation on arguments. True with the value in result, or with chosen set to the
// deferred argument that gives the result; false after raising.
[[nodiscard]] bool InvokeBuiltin(const BuiltinRecord& record, BuiltinArguments& arguments, Variant& result,
                                 int& chosen);

// Evaluates a pure call whose arguments are the constants values (count entries; a missing one is the
// missing-argument Error value) without raising: false when it fails, so that the call is left to
// run time.
[[nodiscard]] bool FoldBuiltin(const BuiltinRecord& record, const Variant* values, const bool* given, int count,
                               Variant& result);

} // namespace brannoc
