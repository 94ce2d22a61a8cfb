#pragma once
// Access to the elements of records: a path from a variable (a record or an array of records) through
// array indexes and record fields to the place an expression such as a(i).inner.x names. The indexes
// are on the value stack, in the order written; the path is walked each time it is used.
#include "code/FieldTextStore.h"
#include "code/ProcedureBody.h"

#include <vector>

namespace brannoc {

struct PathStep {
    enum class Kind : std::uint8_t { Index, Field };
    Kind kind = Kind::Field;
    int count = 0;                        // Index: the number of indexes
    const RecordField* field = nullptr;   // Field: the field, owned by a record type the path keeps
};

struct RecordPath {
    VariableRef root;
    // A path that starts at the record of an enclosing With block (its level) instead of root.
    int withLevel = -1;
    std::vector<PathStep> steps;
    // Keeps the record types whose fields the steps point at.
    std::vector<RecordTypeRef> types;
    // Indexes of all Index steps together.
    int indexCount = 0;
    // Fixed-length String elements of an array field (a path ending at such an element) keep this length.
    UINT elementLength = 0;
};

// Replaces the path's indexes on top of the value stack by a copy of the value the path names. False
// after raising.
[[nodiscard]] bool LoadRecordPath(const RunContext& context, const RecordPath& path);

// The array a path names, held by a record field: where its reference is kept (the path's indexes, on
// top of the value stack, are taken off). False after raising.
[[nodiscard]] bool FindPathArray(const RunContext& context, const RecordPath& path, SAFEARRAY**& location);

// kPathArgument: replaces the indexes of record path op.index on top of the value stack by a reference to
// the hidden slot op.variable, which takes a copy of the value the path names; slot op.variable + 1 keeps
// where it lives. Arrays the place lies in keep their storage while the reference is on the stack. False
// after raising.
[[nodiscard]] bool PushPathArgument(const RunContext& context, const ExprOp& op);
// kPathWriteBack: stores the hidden slot's value back at the place it was copied from and empties the
// slot. Nothing goes back when the record the path starts at was replaced during the call. False after
// raising.
[[nodiscard]] bool WriteBackPathArgument(const RunContext& context, const ExprOp& op);

// Replaces the path's indexes by a reference to the record the path names (With on a record). False
// after raising (10080 when the path names no record).
[[nodiscard]] bool PushRecordReference(const RunContext& context, const RecordPath& path);

// Replaces the record on top of the value stack by its size in bytes (a Long). False after raising
// 10080 when the value is not a record.
[[nodiscard]] bool ReplaceByRecordSize(const RunContext& context);

// path = value: the value is on top of the stack with the path's indexes below it; both are taken off.
// A Let into a Variant field (resolvesDefault) stores an object's default value, not the object.
class AssignPathStatement final : public Statement {
public:
    AssignPathStatement(Expression code, int path, bool resolvesDefault)
        : m_code(std::move(code)), m_path(path), m_resolvesDefault(resolvesDefault)
    {
    }
    // A string read in place into a string field goes the direct way (FieldTextStore).
    [[nodiscard]] bool Execute() override;
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    // Such a store is an operation of the register form (StoreFieldText).
    bool EmitRegisters(RegisterBuilder& builder) override;
    // The register form's store: false, with nothing changed, when it gives up; true as well after
    // raising (out of memory), with the halt bit set.
    [[nodiscard]] bool StoreTextInPlace(const RunContext& context) const { return m_text.Run(context); }

private:
    Expression m_code;
    int m_path;
    bool m_resolvesDefault;
    enum class Direct : std::uint8_t { kUntried, kNone, kText };
    Direct m_direct = Direct::kUntried;
    FieldTextStore m_text;

    // Compiles the direct store the first time it is needed.
    bool DirectTextReady();
};

// LSet record path = text, RSet record path = text: the String, fixed-length String or Variant the path
// ends at keeps its length and takes the text aligned in it. The code leaves the path's indexes and then
// the text on the stack.
class AlignPathStatement final : public Statement {
public:
    AlignPathStatement(Expression code, int path, bool right) : m_code(std::move(code)), m_path(path), m_right(right) {}
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    Expression m_code;
    int m_path;
    bool m_right;
};

// record.v(i, ...) = value: an element of the array that a Variant field holds (or, when the field
// holds an object, its default member). The code leaves the path's indexes, the element's `count`
// indexes and then the value on the stack.
class AssignPathElementStatement final : public Statement {
public:
    // `letsValue`: a Let (an object value gives way to its default member's value), not a Set.
    AssignPathElementStatement(Expression code, int path, int count, bool letsValue)
        : m_code(std::move(code)), m_path(path), m_count(count), m_letsValue(letsValue)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    Expression m_code;
    int m_path;
    int m_count;
    bool m_letsValue;
};

// LSet target = source between records of plain data: the source's first `size` bytes are copied over
// the target's; the target's further bytes stay as they were.
class RecordCopyStatement final : public Statement {
public:
    RecordCopyStatement(VariableRef target, VariableRef source, ULONG size)
        : m_target(target), m_source(source), m_size(size)
    {
    }
    [[nodiscard]] bool Execute() override;

private:
    VariableRef m_target;
    VariableRef m_source;
    ULONG m_size;
};

} // namespace brannoc
