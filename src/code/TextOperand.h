#pragma once
// Strings read where they are stored. A string constant, a String variable (or a Variant holding a
// string), an element of a one-dimensional String array at a whole index, a string field of a record
// (FieldText), or a Mid over a string variable is read as a view of the stored characters: comparing, copying or appending it makes no new
// string. Like the numeric direct forms a read either gives exactly the text the general code would
// push or gives up without any effect (the variable holds no string, an index lies outside the
// bounds), and the statement then runs its general code.
#include "code/FieldText.h"
#include "code/StringForms.h"

#include <cwchar>
#include <string_view>

namespace brannoc {

class TextOperand final {
public:
    // Compiles the ops [first, first + count) of a procedure's code when they name such a string.
    bool Compile(const ExprOp* first, std::size_t count, const CompiledProcedure& procedure);
    // Compiles `last` alone, an element of a String array or a string field of a record whose index the
    // register form has computed: the Long at byte offset `positionOffset` of the running frame.
    bool CompileAt(const ExprOp& last, int positionOffset, const CompiledProcedure& procedure);
    // Whether `last`, the final op of a text, takes an index that CompileAt can be given.
    static bool IsIndexedText(const ExprOp& last, const CompiledProcedure& procedure);
    bool IsReady() const noexcept { return m_kind != Kind::kNone; }
    // Whether the text is the variable `index` of `scope` (appending to that variable must not read it).
    bool ReadsVariable(StorageScope scope, int index) const noexcept
    {
        return (m_kind == Kind::kVariable || m_kind == Kind::kSlice) && m_scope == scope && m_index == index;
    }
    // The text; false when it gave up. A constant and a local String are read here, in line.
    [[nodiscard]] inline bool Read(const RunContext& context, std::wstring_view& text) const;
    // The same with an element of a local String array at a local Long, and a record's field, read in
    // line too: for a statement whose whole work is moving one text.
    [[nodiscard, gnu::always_inline]] inline bool ReadInLine(const RunContext& context, std::wstring_view& text) const;

private:
    // The other kinds of text.
    [[nodiscard]] bool ReadElsewhere(const RunContext& context, std::wstring_view& text) const;

    enum class Kind : std::uint8_t { kNone, kConstant, kVariable, kElement, kSlice, kField };
    Kind m_kind = Kind::kNone;
    StorageScope m_scope = StorageScope::Local;
    int m_index = 0;
    const Module* m_module = nullptr;
    std::wstring_view m_constant;
    // kElement: the index: a Long the register form computed (its frame offset; 0: none), the local whole
    // variable that is the index (-1: none), or its typed form.
    TypedExpression m_position;
    int m_positionOffset = 0;
    int m_localPosition = -1;
    SliceForm m_slice;
    FieldText m_field;
};

// The view of a stored string: a VT_BSTR value or a reference to one (null: empty); false for anything
// else.
[[nodiscard]] inline bool StoredText(const VARIANT& value, std::wstring_view& text)
{
    BSTR string;
    if (value.vt == VT_BSTR)
        string = value.bstrVal;
    else if (value.vt == (VT_BYREF | VT_BSTR) && value.pbstrVal)
        string = *value.pbstrVal;
    else
        return false;
    return WholeCharacters(string, text);
}

bool TextOperand::Read(const RunContext& context, std::wstring_view& text) const
{
    if (m_kind == Kind::kConstant) {
        text = m_constant;
        return true;
    }
    if (m_kind == Kind::kVariable && m_scope == StorageScope::Local)
        return StoredText(*StorageOf(context, StorageScope::Local, m_index), text);
    return ReadElsewhere(context, text);
}

bool TextOperand::ReadInLine(const RunContext& context, std::wstring_view& text) const
{
    if (m_kind == Kind::kElement && m_scope == StorageScope::Local && (m_positionOffset > 0 || m_localPosition >= 0)) {
        // The usual element: a local String array that holds its array itself, at a local Long or one
        // the register form computed.
        const VARIANT* locals = static_cast<const VARIANT*>(context.activation->Locals());
        const VARIANT& array = locals[m_index];
        const VARIANT& local = locals[m_localPosition < 0 ? 0 : m_localPosition];
        const bool computed = m_positionOffset > 0;
        const LONG position = computed ? ComputedPosition(context, m_positionOffset) : local.lVal;
        if (array.vt == (VT_ARRAY | VT_BSTR) && (computed || local.vt == VT_I4)) {
            if (const char* element = ElementOfVector(array.parray, position)) {
                return WholeCharacters(*reinterpret_cast<const BSTR*>(element), text);
            }
        }
    }
    if (m_kind == Kind::kField)
        return m_field.Read(context, text);
    return Read(context, text);
}

// Whether two texts are equal code unit by code unit: lengths first, then the first code units in line
// (most texts that differ differ there), then the rest by a call.
[[nodiscard]] inline bool SameText(std::wstring_view left, std::wstring_view right)
{
    return left.size() == right.size() &&
           (left.empty() || (left[0] == right[0] && std::wmemcmp(left.data(), right.data(), left.size()) == 0));
}

// Code units compared from the first, the shorter of two texts less when it is the other's start: the
// order of two Strings (negative, 0 or positive). Equality tests lengths first.
[[nodiscard]] inline bool TextOrderHolds(OperationId op, std::wstring_view left, std::wstring_view right)
{
    if (op == OperationId::kEqual || op == OperationId::kNotEqual)
        return SameText(left, right) == (op == OperationId::kEqual);
    return OrderHolds(op, left.compare(right));
}

// A comparison of two such strings (s = "beta", names(i) < t, Mid(line, i, 2) = "HO"): the operands
// compared in place, by code unit as the operators compare two Strings.
class TextComparison final {
public:
    // Compiles a condition's code: left operand, right operand, comparison.
    bool Compile(const Expression& code, const CompiledProcedure& procedure);
    bool IsReady() const noexcept { return m_left.IsReady(); }
    // After Compile: where the right operand's ops begin, and the operands, which the register form may
    // compile again to read at indexes it computes itself.
    std::size_t RightStart() const noexcept { return m_rightStart; }
    TextOperand& Left() noexcept { return m_left; }
    TextOperand& Right() noexcept { return m_right; }
    // In line: constants and local Strings, the usual operands, are read without a call.
    [[nodiscard, gnu::always_inline]] inline bool EvaluateCondition(const RunContext& context, bool& truth) const
    {
        std::wstring_view left;
        std::wstring_view right;
        if (!m_left.Read(context, left) || !m_right.Read(context, right))
            return false;
        truth = TextOrderHolds(m_op, left, right);
        return true;
    }

private:
    TextOperand m_left;
    TextOperand m_right;
    OperationId m_op = OperationId::kEqual;
    std::size_t m_rightStart = 0;
};

} // namespace brannoc
