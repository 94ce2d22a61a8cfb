#pragma once
// The walk to a field of a record along a record path with at most one index (rec.Name, people(k).Age,
// rec.inner.Label, items(i).tag), without the value stack: from the path's root variable or With
// object through nested records and at most one array of records to the record that holds the field.
// It gives up without any effect (null) where the general code might do something else: an index
// outside the bounds, an array without storage or of other records, a root that holds no record.
#include "code/ProcedureBody.h"
#include "values/RecordType.h"

namespace brannoc {

struct RecordPath;

class FieldWalk final {
public:
    // Compiles the walk of path `path` of procedure. False when the path is not of that shape (the
    // index, when there is one, is the caller's to compute).
    bool Compile(int path, const CompiledProcedure& procedure);
    bool IsReady() const noexcept { return m_field != nullptr; }
    bool HasIndex() const noexcept { return m_indexStep >= 0; }
    const RecordField& Field() const noexcept { return *m_field; }
    // The record holding the field, `position` being the path's index (unused without one); null when
    // the walk gave up. An element of a local array of records (people(k).Name) is found in line.
    [[nodiscard, gnu::always_inline]] char* FindRecord(const RunContext& context, LONG position) const
    {
        if (m_elementOfLocal >= 0) {
            const VARIANT* root = static_cast<const VARIANT*>(context.activation->Locals()) + m_elementOfLocal;
            if (root->vt == (VT_ARRAY | VT_RECORD))
                return ElementOfRecords(root->parray, position);
        }
        return WalkToRecord(context, position);
    }
    // The field itself, or null.
    [[nodiscard]] char* FindField(const RunContext& context, LONG position) const
    {
        char* record = FindRecord(context, position);
        return record ? record + m_field->offset : nullptr;
    }

private:
    // The record at `position` of an array of the path's records; null when the array has no storage,
    // holds other records, or the position lies outside its bounds.
    [[nodiscard]] char* ElementOfRecords(SAFEARRAY* array, LONG position) const
    {
        return array && (array->fFeatures & FADF_RECORD) && array->cbElements == m_elementSize
                   ? ElementOfVector(array, position)
                   : nullptr;
    }
    // FindRecord's work for every other path, and for a root that does not hold its array itself.
    [[nodiscard]] char* WalkToRecord(const RunContext& context, LONG position) const;

    const RecordPath* m_path = nullptr;
    const RecordField* m_field = nullptr;
    // The step that is the index (-1: none), and the size of the records that array holds.
    int m_indexStep = -1;
    ULONG m_elementSize = 0;
    // The path is a variable's array of records, its index and the field (people(k).Name): the record
    // is the element, found without walking the steps.
    bool m_elementOfRoot = false;
    // The same with a local array: its frame slot (-1: not such a path).
    int m_elementOfLocal = -1;
};

} // namespace brannoc
