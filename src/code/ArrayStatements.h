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

private:
    // Keeps the elements of existing and gives its last dimension the new bounds. False after raising.
    [[nodiscard]] bool Preserve(SAFEARRAY* existing, const LONG* lower, const LONG* upper) const;
    // Replaces whatever target holds by a new array. False after raising.
    [[nodiscard]] bool Make(VARIANT& target, const LONG* lower, const LONG* upper) const;

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
    [[nodiscard]] bool Execute() override;

private:
    VariableRef m_target;
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
