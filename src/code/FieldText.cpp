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
    m_field = nullptr;
    m_indexStep = -1;
    m_localPosition = -1;
    const RecordPath& walk = procedure.RecordPathAt(path);
    if (walk.steps.empty() || walk.indexCount > 1 || (walk.indexCount == 0) != (indexCount == 0))
        return false;
    const PathStep& last = walk.steps.back();
    if (last.kind != PathStep::Kind::Field || !last.field || !HoldsText(*last.field))
        return false;
    // Every index step gives a record whose next step is one of its fields; every field before the
    // last is a nested record or an array of records followed by its index.
    std::size_t fieldSteps = 0;
    for (std::size_t i = 0; i < walk.steps.size(); ++i) {
        const PathStep& step = walk.steps[i];
        if (step.kind == PathStep::Kind::Index) {
            if (step.count != 1 || i + 1 >= walk.steps.size() || walk.steps[i + 1].kind != PathStep::Kind::Field ||
                fieldSteps >= walk.types.size() || !walk.types[fieldSteps])
                return false;
            m_indexStep = static_cast<int>(i);
            // The types kept by the path are those of the records its field steps stand in.
            m_elementSize = walk.types[fieldSteps]->Size();
            continue;
        }
        if (!step.field)
            return false;
        ++fieldSteps;
        if (i + 1 == walk.steps.size())
            break;
        const bool arrayOfRecords = step.field->kind == FieldKind::Array && step.field->elementTag == VT_RECORD &&
                                    walk.steps[i + 1].kind == PathStep::Kind::Index;
        if (step.field->kind != FieldKind::Record && !arrayOfRecords)
            return false;
    }
    if (m_indexStep >= 0) {
        Expression position;
        position.ops.assign(indexFirst, indexFirst + indexCount);
        if (!CompileWholeForm(position, procedure, m_position))
            return false;
        const ExprOp& only = position.ops.back();
        if (position.ops.size() == 1 && only.code == ExprOpCode::kLoad && only.scope == StorageScope::Local &&
            !only.type.IsVariant())
            m_localPosition = only.index;
    }
    m_path = &walk;
    m_field = last.field;
    return true;
}

bool ReadWholeLocal(const RunContext& context, int slot, LONG& value)
{
    const VARIANT* cell = FollowByRefChain(static_cast<VARIANT*>(context.activation->Locals()) + slot);
    if (cell->vt == VT_I4)
        value = cell->lVal;
    else if (cell->vt == VT_I2)
        value = cell->iVal;
    else
        return false;
    return true;
}

bool FieldText::ReadPosition(const RunContext& context, LONG& position) const
{
    if (m_localPosition < 0)
        return m_position.EvaluateWhole(context, position);
    return ReadWholeLocal(context, m_localPosition, position);
}

char* FieldText::FindRecord(const RunContext& context) const
{
    const RecordPath& path = *m_path;
    VARIANT* storage = nullptr;
    if (path.withLevel >= 0) {
        const Activation& activation = *context.activation;
        if (activation.WithDepth() <= path.withLevel)
            return nullptr;
        storage = &context.interpreter->Values()
                       .At(activation.ValueStackBase() + static_cast<std::size_t>(path.withLevel))
                       .Raw();
    } else {
        storage = StorageOf(context, path.root.scope, path.root.index, path.root.module);
        if (!storage)
            return nullptr;
    }
    const VARIANT* value = FollowByRefChain(storage);
    char* record = nullptr;
    SAFEARRAY* array = nullptr;
    if ((value->vt & ~VT_BYREF) == VT_RECORD)
        record = static_cast<char*>(value->pvRecord);
    else if (value->vt == (VT_ARRAY | VT_RECORD))
        array = value->parray;
    else if (value->vt == (VT_ARRAY | VT_BYREF | VT_RECORD) && value->pparray)
        array = *value->pparray;
    const std::size_t fieldStep = path.steps.size() - 1;
    for (std::size_t i = 0; i < fieldStep; ++i) {
        const PathStep& step = path.steps[i];
        if (step.kind == PathStep::Kind::Index) {
            LONG position = 0;
            if (!array || !(array->fFeatures & FADF_RECORD) || array->cbElements != m_elementSize ||
                !ReadPosition(context, position))
                return nullptr;
            record = ElementOfVector(array, position);
            array = nullptr;
        } else {
            if (!record)
                return nullptr;
            char* at = record + step.field->offset;
            if (step.field->kind == FieldKind::Record) {
                record = at;
            } else {
                array = *reinterpret_cast<SAFEARRAY**>(at);
                record = nullptr;
            }
        }
    }
    return record;
}

bool FieldText::Read(const RunContext& context, std::wstring_view& text) const
{
    char* record = FindRecord(context);
    if (!record)
        return false;
    char* at = record + m_field->offset;
    switch (m_field->kind) {
    case FieldKind::String: {
        const BSTR string = *reinterpret_cast<const BSTR*>(at);
        text = string ? std::wstring_view(string, TextLength(string)) : std::wstring_view();
        return true;
    }
    case FieldKind::FixedString:
        text = std::wstring_view(reinterpret_cast<const wchar_t*>(at), m_field->length);
        return true;
    default:
        return StoredText(*FollowByRefChain(reinterpret_cast<const VARIANT*>(at)), text);
    }
}

bool FieldText::Assign(const RunContext& context, std::wstring_view text, bool& stored) const
{
    stored = false;
    char* record = FindRecord(context);
    if (!record)
        return true;
    char* at = record + m_field->offset;
    switch (m_field->kind) {
    case FieldKind::String: {
        // The field's BSTR seen as a String value: it takes the text into its own block when it fits.
        BSTR& field = *reinterpret_cast<BSTR*>(at);
        VARIANT view;
        view.vt = VT_BSTR;
        view.bstrVal = field;
        const bool assigned = AssignText(view, text, stored);
        field = view.bstrVal;
        return assigned;
    }
    case FieldKind::FixedString: {
        // Padded with spaces or cut to the field's length; the text may be these very characters.
        auto* characters = reinterpret_cast<wchar_t*>(at);
        const std::size_t length = m_field->length;
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
