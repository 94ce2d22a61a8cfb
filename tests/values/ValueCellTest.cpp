#include "values/ValueCell.h"

#include "values/Conversion.h"
#include "values/Operators.h"
#include "values/TextForm.h"

#include "RaiseRecorder.h"
#include "ValueMaker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

// Counts allocations through operator new, so tests can show that the fast paths allocate nothing.
namespace {
std::atomic<long> s_allocations{0};
}

void* operator new(std::size_t size)
{
    ++s_allocations;
    if (void* block = std::malloc(size ? size : 1))
        return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace brannoc {
namespace {

using namespace test;
using Op = OperationId;

TEST(CellDispatch, LeftTagChoosesTheCell)
{
    const VARTYPE own[] = {VT_I2, VT_I4, VT_R4, VT_R8, VT_CY, VT_DATE, VT_BSTR, VT_DISPATCH, VT_BOOL,
                           VT_DECIMAL, VT_UI1, VT_RECORD};
    for (VARTYPE tag : own)
        EXPECT_EQ(CellFor(tag).Kind(), tag) << tag;
    for (VARTYPE tag : {VT_EMPTY, VT_NULL, VT_ERROR, VT_UNKNOWN})
        EXPECT_EQ(CellFor(tag).Kind(), VT_VARIANT) << tag;
    EXPECT_EQ(StorageCell(VT_ARRAY | VT_I2).Kind(), VT_ARRAY | VT_I2);
    EXPECT_EQ(ArrayCell(VT_BSTR).Kind(), VT_ARRAY | VT_BSTR);
}

// The inline same-kind paths must agree with the generic routine, including at the range limits.
struct FastRow {
    Variant (*left)();
    Op op;
    Variant (*right)();
};

TEST(CellFastPath, AgreesWithGenericRoutineAtBoundaries)
{
    const FastRow rows[] = {
        {[] { return MakeInteger(32766); }, Op::kAdd, [] { return MakeInteger(1); }},
        {[] { return MakeInteger(32767); }, Op::kAdd, [] { return MakeInteger(1); }},
        {[] { return MakeInteger(-32768); }, Op::kSubtract, [] { return MakeInteger(1); }},
        {[] { return MakeInteger(181); }, Op::kMultiply, [] { return MakeInteger(181); }},
        {[] { return MakeInteger(3); }, Op::kLess, [] { return MakeInteger(4); }},
        {[] { return MakeInteger(7); }, Op::kIntegerDivide, [] { return MakeInteger(2); }},
        {[] { return MakeLong(2147483646); }, Op::kAdd, [] { return MakeLong(1); }},
        {[] { return MakeLong(2147483647); }, Op::kAdd, [] { return MakeLong(1); }},
        {[] { return MakeLong(65536); }, Op::kMultiply, [] { return MakeLong(65536); }},
        {[] { return MakeLong(5); }, Op::kGreaterEqual, [] { return MakeLong(5); }},
        {[] { return MakeDouble(1.5); }, Op::kAdd, [] { return MakeDouble(2.25); }},
        {[] { return MakeDouble(2); }, Op::kSubtract, [] { return MakeDouble(2); }},
        {[] { return MakeDouble(0); }, Op::kMultiply, [] { return MakeDouble(5); }},
        {[] { return MakeDouble(1.5); }, Op::kNotEqual, [] { return MakeDouble(1.5); }},
        {[] { return MakeString(L"ab"); }, Op::kLess, [] { return MakeString(L"abc"); }},
    };
    for (const FastRow& row : rows) {
        Variant viaCell = row.left(), viaGeneric = row.left();
        ASSERT_TRUE(ApplyBinary(row.op, viaCell, row.right()));
        ASSERT_TRUE(BinaryOperation(row.op, viaGeneric, row.right()));
        std::wstring cellText, genericText;
        ASSERT_TRUE(WriteDebug(cellText, viaCell));
        ASSERT_TRUE(WriteDebug(genericText, viaGeneric));
        EXPECT_EQ(cellText, genericText);
    }
}

TEST(CellFastPath, FloatingErrorsStillRaise)
{
    RaiseRecorder raised;
    Variant value = MakeDouble(1e308);
    EXPECT_FALSE(ApplyBinary(Op::kMultiply, value, MakeDouble(10)));
    EXPECT_EQ(raised.Last(), 10062);
    value = MakeDouble(1e-300);
    EXPECT_FALSE(ApplyBinary(Op::kMultiply, value, MakeDouble(1e-300)));
    EXPECT_EQ(raised.Last(), 10063);
}

TEST(CellFastPath, SameKindOperationsAllocateNothing)
{
    Variant integer = MakeInteger(1), integerStep = MakeInteger(1);
    Variant number = MakeLong(1), numberStep = MakeLong(3);
    Variant real = MakeDouble(1), realStep = MakeDouble(0.5);
    long before = s_allocations.load();
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(ApplyBinary(Op::kAdd, integer, integerStep));
        ASSERT_TRUE(ApplyBinary(Op::kAdd, number, numberStep));
        ASSERT_TRUE(ApplyBinary(Op::kMultiply, real, realStep));
        ASSERT_TRUE(ApplyBinary(Op::kAdd, real, realStep));
    }
    EXPECT_EQ(s_allocations.load(), before);
    EXPECT_EQ(integer.Integer(), 1001);
    EXPECT_EQ(number.Long(), 3001);
}

TEST(CellUnary, GoesThroughTheCell)
{
    Variant value = MakeInteger(-32768);
    ASSERT_TRUE(ApplyUnary(Op::kNegate, value));
    EXPECT_EQ(value.Tag(), VT_I4);
    EXPECT_EQ(value.Long(), 32768);
}

// ---- Load and store ----

TEST(CellStore, TypedStorageReadsTheValueInItsKind)
{
    Variant storage = MakeInteger(0);
    ASSERT_TRUE(StorageCell(VT_I2).Store(storage.Raw(), MakeString(L"12.5")));
    EXPECT_EQ(storage.Tag(), VT_I2);
    EXPECT_EQ(storage.Integer(), 12);

    RaiseRecorder raised;
    EXPECT_FALSE(StorageCell(VT_I2).Store(storage.Raw(), MakeLong(40000)));
    EXPECT_EQ(raised.Last(), 10062);
    EXPECT_FALSE(StorageCell(VT_I4).Store(storage.Raw(), MakeNull()));
    EXPECT_EQ(raised.Last(), 10075);
    EXPECT_FALSE(StorageCell(VT_R8).Store(storage.Raw(), MakeString(L"x")));
    EXPECT_EQ(raised.Last(), 10080);
}

TEST(CellStore, VariantStorageKeepsTheResolvedValue)
{
    Variant target = MakeString(L"text");
    Variant reference;
    reference.SetByRef(VT_VARIANT, &target.Raw());
    Variant storage;
    ASSERT_TRUE(StorageCell(VT_VARIANT).Store(storage.Raw(), reference));
    EXPECT_EQ(storage.Tag(), VT_BSTR);
    EXPECT_EQ(storage.StringView(), L"text");
    EXPECT_NE(storage.String(), target.String());

    Variant loaded;
    ASSERT_TRUE(StorageCell(VT_VARIANT).Load(reference.Raw(), loaded));
    EXPECT_EQ(loaded.StringView(), L"text");
}

TEST(CellStore, FixedLengthStringPadsAndCuts)
{
    FixedStringCell cell(4);
    Variant storage = MakeString(L"");
    ASSERT_TRUE(cell.Store(storage.Raw(), MakeString(L"ab")));
    EXPECT_EQ(storage.StringView(), L"ab  ");
    ASSERT_TRUE(cell.Store(storage.Raw(), MakeString(L"abcdef")));
    EXPECT_EQ(storage.StringView(), L"abcd");
    ASSERT_TRUE(cell.Store(storage.Raw(), MakeInteger(7)));
    EXPECT_EQ(storage.StringView(), L"7   ");
}

TEST(CellStore, ArraysAndRecordsRefuseOtherKinds)
{
    RaiseRecorder raised;
    Variant storage;
    EXPECT_FALSE(ArrayCell(VT_I2).Store(storage.Raw(), MakeInteger(1)));
    EXPECT_EQ(raised.Last(), 10080);
    Variant array;
    array.SetArray(SafeArrayCreateVector(VT_I4, 0, 2), VT_I4);
    raised.Reset();
    EXPECT_FALSE(ArrayCell(VT_I2).Store(storage.Raw(), array));
    EXPECT_EQ(raised.Last(), 10080);
    ASSERT_TRUE(ArrayCell(VT_I4).Store(storage.Raw(), array));
    EXPECT_EQ(storage.Tag(), VT_ARRAY | VT_I4);
    EXPECT_NE(storage.Array(), array.Array());
    raised.Reset();
    EXPECT_FALSE(StorageCell(VT_RECORD).Store(storage.Raw(), MakeInteger(1)));
    EXPECT_EQ(raised.Last(), 10080);
}

TEST(CellText, FormsGoThroughTheCell)
{
    std::wstring out;
    ASSERT_TRUE(CellFor(VT_I2).WritePrint(out, MakeInteger(5)));
    EXPECT_EQ(out, L" 5");
    out.clear();
    ASSERT_TRUE(CellFor(VT_BOOL).WriteWrite(out, MakeBoolean(true)));
    EXPECT_EQ(out, L"#TRUE#");
    out.clear();
    ASSERT_TRUE(CellFor(VT_R8).WriteDebug(out, MakeDouble(1.5)));
    EXPECT_EQ(out, L"1.5#");
}

} // namespace
} // namespace brannoc
