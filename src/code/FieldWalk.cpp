#include "code/FieldWalk.h"

#include "code/RecordAccess.h"
#include "exec/Activation.h"
#include "exec/Interpreter.h"

namespace brannoc {

bool FieldWalk::Compile(int path, const CompiledProcedure& procedure)
{
    m_field = nullptr;
    m_indexStep = -1;
    m_elementOfLocal = -1;
    const RecordPath& walk = procedure.RecordPathAt(path);
    if (walk.steps.empty() || walk.indexCount > 1)
        return false;
    const PathStep& last = walk.steps.back();
    if (last.kind != PathStep::Kind::Field || !last.field)
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
    m_path = &walk;
    m_field = last.field;
    m_elementOfRoot = walk.withLevel < 0 && walk.steps.size() == 2 && m_indexStep == 0;
    m_elementOfLocal = m_elementOfRoot && walk.root.scope == StorageScope::Local ? walk.root.index : -1;
    return true;
}

char* FieldWalk::WalkToRecord(const RunContext& context, LONG position) const
{
    const RecordPath& path = *m_path;
    if (m_elementOfRoot) {
        const VARIANT* root = StorageOf(context, path.root.scope, path.root.index, path.root.module);
        if (root && root->vt == (VT_ARRAY | VT_RECORD))
            return ElementOfRecords(root->parray, position);
        // A root held by reference, or one that holds something else: the walk below sees to it.
    }
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
            record = ElementOfRecords(array, position);
            if (!record)
                return nullptr;
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

} // namespace brannoc
