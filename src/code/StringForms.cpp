#include "code/StringForms.h"

#include "code/BuiltinCall.h"
#include "frontend/Token.h"
#include "library/BuiltinTable.h"
#include "values/StringCapacity.h"

namespace brannoc {

namespace {

std::wstring_view TextOf(BSTR text) { return {text ? text : L"", TextLength(text)}; }

} // namespace

bool CompileWholeForm(const Expression& code, const CompiledProcedure& procedure, TypedExpression& form)
{
    if (code.ops.empty())
        return false;
    Expression plain;
    if (code.ops[0].code == ExprOpCode::kTypedValue)
        plain.ops.assign(code.ops.begin() + 1, code.ops.end());
    else
        plain.ops = code.ops;
    // A variable handed over by reference is read as its value.
    if (plain.ops.size() == 1 && plain.ops[0].code == ExprOpCode::kLoadRef)
        plain.ops[0].code = ExprOpCode::kLoad;
    if (!form.Compile(plain, procedure))
        return false;
    return form.ResultKind() == VT_I2 || form.ResultKind() == VT_I4;
}

bool SliceForm::Compile(int call, const CompiledProcedure& procedure)
{
    m_ready = false;
    const BuiltinCall& built = procedure.BuiltinCallAt(call);
    if (!IsLazyBuiltinCall(built, Token::Mid, 3))
        return false;
    const Expression& text = built.arguments[0].code;
    // The compiler hands a variable over by reference (kLoadRef) so that reading it copies nothing.
    if (text.ops.size() != 1 || (text.ops[0].code != ExprOpCode::kLoad && text.ops[0].code != ExprOpCode::kLoadRef))
        return false;
    const ExprOp& load = text.ops[0];
    if (load.type.IsArray() || (!load.type.IsVariant() && load.type.ValueTag() != VT_BSTR))
        return false;
    if (!CompileWholeForm(built.arguments[1].code, procedure, m_start) ||
        !CompileWholeForm(built.arguments[2].code, procedure, m_length))
        return false;
    m_scope = load.scope;
    m_index = load.index;
    m_module = load.module;
    m_ready = true;
    return true;
}

bool SliceForm::Evaluate(const RunContext& context, std::wstring_view& part) const
{
    // Mid reads the text, then the length, then the start.
    const VARIANT* storage = StorageOf(context, m_scope, m_index, m_module);
    if (!storage)
        return false;
    storage = FollowByRefChain(storage);
    BSTR text = nullptr;
    if (storage->vt == VT_BSTR)
        text = storage->bstrVal;
    else if (storage->vt == (VT_BYREF | VT_BSTR) && storage->pbstrVal)
        text = *storage->pbstrVal;
    else
        return false;
    LONG length = 0;
    LONG start = 0;
    if (!m_length.EvaluateWhole(context, length) || length < 0 || !m_start.EvaluateWhole(context, start) || start < 1)
        return false;
    const std::wstring_view whole = TextOf(text);
    const auto first = static_cast<std::size_t>(start - 1);
    part = first >= whole.size() ? std::wstring_view() : whole.substr(first, static_cast<std::size_t>(length));
    return true;
}

bool AppendPartToStorage(VARIANT& storage, std::wstring_view part, bool& appended)
{
    VARIANT* end = FollowByRefChain(&storage);
    BSTR* slot = end->vt == VT_BSTR ? &end->bstrVal : end->vt == (VT_BYREF | VT_BSTR) ? end->pbstrVal : nullptr;
    if (!slot)
        return false;
    // The holder borrows the stored string; the grown string (the same block or a new one, the old one
    // then freed) goes back into storage either way.
    Variant holder;
    holder.Raw().vt = VT_BSTR;
    holder.Raw().bstrVal = *slot;
    appended = AppendToString(holder, part);
    *slot = holder.String();
    holder.Raw().vt = VT_EMPTY;
    return true;
}

} // namespace brannoc
