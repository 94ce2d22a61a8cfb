#pragma once
// The statements that work on whole arrays: ReDim [Preserve], Erase and the assignment of a whole array
// to a dynamic array variable.
#include "code/ProcedureBody.h"

#include <oaidl.h>

namespace brannoc {

// ReDim [Preserve] var(bounds, ...) [As type]: the code leaves a (lower, upper) pair per dimension.
// arrayType is the type of the array made (the As type, else the variable's own; a Variant's elements
// are Variants); record is the record type of record elements.
class ReDimStatement final : public Statement {
public:
    ReDimStatement(Expression bounds, VariableRef target, int dimensions, bool preserve, TypeCode arrayType,
                   IRecordInfo* record)
        : m_bounds(std::move(bounds)), m_target(target), m_dimensions(dimensions), m_preserve(preserve),
          m_arrayType(arrayType), m_record(record)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    // The array is held by a record: record path `path`, whose indexes the code leaves before the bounds.
    void SetPath(int path) { m_path = path; }

private:
    // Keeps the elements of existing and gives its last dimension the new bounds. False after raising.
    [[nodiscard]] bool Preserve(SAFEARRAY* existing, const LONG* lower, const LONG* upper) const;
    // Replaces whatever target (a variable) or held (an array held by a record) holds by a new array.
    // False after raising.
    [[nodiscard]] bool Make(VARIANT* target, SAFEARRAY** held, const LONG* lower, const LONG* upper) const;

    int m_path = -1;
    Expression m_bounds;
    VariableRef m_target;
    int m_dimensions;
    bool m_preserve;
    TypeCode m_arrayType;
    IRecordInfo* m_record;
};

// Erase var: a dynamic array becomes not dimensioned; a fixed array's elements return to their zero
// values; an array of records raises 10902.
class EraseStatement final : public Statement {
public:
    explicit EraseStatement(VariableRef target) : m_target(target) {}
    // The array is held by a record: record path `path` with the code of its indexes.
    EraseStatement(Expression indexes, int path, TypeCode arrayType)
        : m_indexes(std::move(indexes)), m_path(path)
    {
        m_target.type = arrayType;
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    // Erases the array that target (a variable) or held (an array held by a record) holds. False after raising.
    [[nodiscard]] bool Erase(const RunContext& context, VARIANT* target, SAFEARRAY** held) const;

    VariableRef m_target;
    Expression m_indexes;
    int m_path = -1;
};

// dynamicArray = value: the value must be an array of the variable's element kind (a String given to a
// Byte array becomes its bytes); a fixed array met at run time (through a by-reference parameter)
// raises 10618.
class ArrayAssignStatement final : public Statement {
public:
    ArrayAssignStatement(Expression value, VariableRef target, IRecordInfo* record)
        : m_value(std::move(value)), m_target(target), m_record(record)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    Expression m_value;
    VariableRef m_target;
    IRecordInfo* m_record;
};

} // namespace brannoc
