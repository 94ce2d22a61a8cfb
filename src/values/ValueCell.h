#pragma once
// Value cells: one class per type kind, carrying the operations on values of that kind. Typed storage
// is a VARIANT whose tag stays the cell's kind; a Variant cell's storage takes any tag. Expression nodes
// never switch on types: they ask the cell of the left operand's kind (CellFor) for the operation.
#include "values/OperationId.h"
#include "values/Variant.h"

#include <string>

namespace brannoc {

class ValueCell {
public:
    virtual ~ValueCell() = default;

    // The kind of value this cell holds (VT_VARIANT for the Variant cell; the element kind with the
    // array flag for arrays).
    virtual VARTYPE Kind() const = 0;

    // Copies the stored value into target (by-reference chains followed). False after raising.
    [[nodiscard]] virtual bool Load(const VARIANT& storage, Variant& target) const;
    // Stores value into storage, read in this cell's kind with ChangeType's rules.
    [[nodiscard]] virtual bool Store(VARIANT& storage, const Variant& value) const;
    // Converts value (of this cell's kind) to tag in place.
    [[nodiscard]] virtual bool Convert(Variant& value, VARTYPE tag) const;
    // left = left op right, left being of this cell's kind.
    [[nodiscard]] virtual bool Binary(OperationId op, Variant& left, const Variant& right) const;
    // value = op value.
    [[nodiscard]] virtual bool Unary(OperationId op, Variant& value) const;

    // The printed forms of a value of this kind.
    [[nodiscard]] virtual bool WritePrint(std::wstring& out, const Variant& value) const;
    [[nodiscard]] virtual bool WriteWrite(std::wstring& out, const Variant& value) const;
    [[nodiscard]] virtual bool WriteDebug(std::wstring& out, const Variant& value) const;
};

// The cell that implements operations whose left operand has tag (kinds without a cell of their own,
// such as Empty, Null and Error, use the Variant cell).
const ValueCell& CellFor(VARTYPE tag);

// The cell for typed storage of kind tag (VT_VARIANT for Variant variables).
const ValueCell& StorageCell(VARTYPE tag);

// A fixed-length String cell of length characters (1 to 1000 or k x 1024).
class FixedStringCell final : public ValueCell {
public:
    explicit FixedStringCell(UINT length) : m_length(length) {}
    VARTYPE Kind() const override { return VT_BSTR; }
    UINT Length() const { return m_length; }
    [[nodiscard]] bool Store(VARIANT& storage, const Variant& value) const override;

private:
    UINT m_length = 1;
};

// The cell of an array variable whose elements have kind elementTag.
const ValueCell& ArrayCell(VARTYPE elementTag);

} // namespace brannoc

// The shortcuts that expression nodes use (ApplyBinary, ApplyUnary) try the numeric cells' inline fast
// paths first; they live with those cells.
#include "values/NumericCells.h"
