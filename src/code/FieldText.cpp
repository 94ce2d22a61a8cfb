#include "code/FieldText.h"

#include "code/RecordAccess.h"
#include "code/StringForms.h"
#include "code/TextOperand.h"
#include "exec/Activation.h"
#include "exec/Interpreter.h"
#include "values/StringCapacity.h"

#include <cwchar>

namespace brannoc {

namespace {

bool HoldsText(const RecordField& field)
{
    return field.kind == FieldKind::String || field.kind == FieldKind::FixedString || field.kind == FieldKind::Variant;
}

} // namespace

bool FieldText::Compile(int path, const ExprOp* indexFirst, std::size_t indexCount, const CompiledProcedure& procedure)
{
    m_localPosition = -1;
    m_positionOffset = 0;
    if (!m_walk.Compile(path, procedure) || !HoldsText(m_walk.Field()) || m_walk.HasIndex() != (indexCount != 0)) {
        m_walk = FieldWalk();
        return false;
    }
    if (m_walk.HasIndex()) {
        Expression position;
        position.ops.assign(indexFirst, indexFirst + indexCount);
        if (!CompileWholeForm(position, procedure, m_position)) {
            m_walk = FieldWalk();
            return false;
        }
        if (position.ops.size() == 1 && IsIndexReadInPlace(position.ops.back()))
            m_localPosition = position.ops.back().index;
    }
    return true;
}

bool FieldText::CompileAt(int path, int positionOffset, const CompiledProcedure& procedure)
{
    m_localPosition = -1;
    m_positionOffset = 0;
    if (positionOffset <= 0 || !m_walk.Compile(path, procedure) || !HoldsText(m_walk.Field()) || !m_walk.HasIndex()) {
        m_walk = FieldWalk();
        return false;
    }
    m_positionOffset = positionOffset;
    return true;
}

bool FieldText::Read(const RunContext& context, std::wstring_view& text) const
{
    char* at = FindField(context);
    if (!at)
        return false;
    const RecordField& field = m_walk.Field();
    switch (field.kind) {
    case FieldKind::String: {
        return WholeCharacters(*reinterpret_cast<const BSTR*>(at), text);
    }
    case FieldKind::FixedString:
        text = std::wstring_view(reinterpret_cast<const wchar_t*>(at), field.length);
        return true;
    default:
        return StoredText(*FollowByRefChain(reinterpret_cast<const VARIANT*>(at)), text);
    }
}

bool FieldText::Assign(const RunContext& context, std::wstring_view text, bool& stored) const
{
    stored = false;
    char* at = FindField(context);
    if (!at)
        return true;
    switch (m_walk.Field().kind) {
    case FieldKind::String: {
        // The field's BSTR seen as a String value: it takes the text into its own block when it fits.
        BSTR& field = *reinterpret_cast<BSTR*>(at);
        VARIANT view;
        view.vt = VT_BSTR;
        view.bstrVal = field;
        const bool assigned = AssignTextInLine(view, text, stored);
        field = view.bstrVal;
        return assigned;
    }
    case FieldKind::FixedString: {
        // Padded with spaces or cut to the field's length; the text may be these very characters.
        auto* characters = reinterpret_cast<wchar_t*>(at);
        const std::size_t length = m_walk.Field().length;
        const std::size_t copied = text.size() < length ? text.size() : length;
        if (copied)
            std::wmemmove(characters, text.data(), copied);
        for (std::size_t i = copied; i < length; ++i)
            characters[i] = L' ';
        stored = true;
        return true;
    }
    default: {
        // A Variant field holding a reference takes the general store.
        auto& field = *reinterpret_cast<VARIANT*>(at);
        if (field.vt & VT_BYREF)
            return true;
        return AssignText(field, text, stored);
    }
    }
}

} // namespace brannoc
