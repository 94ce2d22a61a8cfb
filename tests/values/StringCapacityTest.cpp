#include "values/StringCapacity.h"

#include "values/Operators.h"

#include "RaiseRecorder.h"
#include "ValueMaker.h"

#include <gtest/gtest.h>

#include <string>

namespace brannoc {
namespace {

using namespace test;

// Appends piece to value count times through the operator, as a loop of s = s & piece does.
void AppendRepeatedly(Variant& value, const Variant& piece, int count)
{
    for (int i = 0; i < count; ++i)
        ASSERT_TRUE(BinaryOperation(OperationId::kConcatenate, value, piece)) << "append " << i;
}

TEST(StringCapacity, HundredThousandAppendsAllocateLogarithmically)
{
    Variant value = MakeString(L"");
    Variant piece = MakeString(L"x");
    unsigned long before = StringAppendAllocations();
    AppendRepeatedly(value, piece, 100000);
    unsigned long allocations = StringAppendAllocations() - before;
    // Doubling from one character reaches 100,000 in 17 steps; allow a little slack, far below linear.
    EXPECT_LE(allocations, 24u);
    EXPECT_GE(allocations, 1u);
    ASSERT_EQ(value.Tag(), VT_BSTR);
    EXPECT_EQ(SysStringLen(value.String()), 100000u);
    EXPECT_EQ(value.StringView(), std::wstring(100000, L'x'));
}

TEST(StringCapacity, GrownStringIsAnOrdinaryBstr)
{
    Variant value = MakeString(L"ab");
    AppendRepeatedly(value, MakeString(L"cd"), 5);
    ASSERT_GE(StringCapacity(value.String()), SysStringLen(value.String()));
    EXPECT_EQ(SysStringByteLen(value.String()), 12u * sizeof(WCHAR));
    EXPECT_EQ(value.String()[12], L'\0');
    // The platform copies the used text only, and the copy compares equal.
    Variant copy(value);
    EXPECT_EQ(copy.StringView(), L"abcdcdcdcdcd");
    EXPECT_EQ(SysStringLen(copy.String()), 12u);
}

TEST(StringCapacity, CapacityOfAPlainStringCoversItsLength)
{
    Bstr text(L"hello");
    EXPECT_GE(StringCapacity(text.Get()), 5u);
    EXPECT_EQ(StringCapacity(nullptr), 0u);
}

TEST(StringCapacity, AppendingAStringToItself)
{
    Variant value = MakeString(L"ab");
    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE(BinaryOperation(OperationId::kConcatenate, value, value));
    EXPECT_EQ(value.StringView(), std::wstring(L"ab") + L"ab" + L"abab" + L"abababab" + L"abababababababab");
}

TEST(StringCapacity, SpareRoomIsNotSharedWithCopies)
{
    Variant value = MakeString(L"a");
    AppendRepeatedly(value, MakeString(L"b"), 3);
    Variant snapshot(value);
    AppendRepeatedly(value, MakeString(L"c"), 2);
    EXPECT_EQ(snapshot.StringView(), L"abbb");
    EXPECT_EQ(value.StringView(), L"abbbcc");
}

struct AppendRow {
    const char* name;
    Variant left;
    Variant right;
    const wchar_t* expected;
};

TEST(StringCapacity, OperandsOfOtherKindsAreAppendedAsText)
{
    AppendRow rows[] = {
        {"number & text", MakeInteger(12), MakeString(L"x"), L"12x"},
        {"text & number", MakeString(L"x"), MakeLong(-3), L"x-3"},
        {"Null & text", MakeNull(), MakeString(L"x"), L"x"},
        {"text & Null", MakeString(L"x"), MakeNull(), L"x"},
        {"Empty & Empty", Variant(), Variant(), L""},
        {"text & empty text", MakeString(L"x"), MakeString(L""), L"x"},
    };
    for (AppendRow& row : rows) {
        RaiseRecorder recorder;
        ASSERT_TRUE(BinaryOperation(OperationId::kConcatenate, row.left, row.right)) << row.name;
        ASSERT_EQ(row.left.Tag(), VT_BSTR) << row.name;
        EXPECT_EQ(row.left.StringView(), row.expected) << row.name;
        EXPECT_EQ(recorder.Count(), 0u) << row.name;
    }
}

TEST(StringCapacity, NullAndNullStaysNull)
{
    Variant left = MakeNull();
    ASSERT_TRUE(BinaryOperation(OperationId::kConcatenate, left, MakeNull()));
    EXPECT_EQ(left.Tag(), VT_NULL);
}

// ---- Appending to a variable's storage ----

TEST(AppendToStorage, HundredThousandAppendsToAStringVariable)
{
    Variant storage = MakeString(L"");
    Variant piece = MakeString(L"ab");
    unsigned long before = StringAppendAllocations();
    for (int i = 0; i < 100000; ++i)
        ASSERT_TRUE(AppendToStorage(storage.Raw(), piece)) << "append " << i;
    EXPECT_LE(StringAppendAllocations() - before, 24u);
    ASSERT_EQ(storage.Tag(), VT_BSTR);
    EXPECT_EQ(SysStringLen(storage.String()), 200000u);
    EXPECT_EQ(storage.StringView().substr(199996), L"abab");
}

TEST(AppendToStorage, ThroughByReferenceStorage)
{
    // A String variable passed by reference, and a Variant passed by reference.
    Variant text = MakeString(L"a");
    Variant byRefString;
    byRefString.SetByRef(VT_BSTR, &text.Raw().bstrVal);
    Variant held = MakeString(L"x");
    Variant byRefVariant;
    byRefVariant.SetByRef(VT_VARIANT, &held.Raw());
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(AppendToStorage(byRefString.Raw(), MakeString(L"b")));
        ASSERT_TRUE(AppendToStorage(byRefVariant.Raw(), MakeInteger(7)));
    }
    EXPECT_EQ(text.StringView(), L"abbb");
    EXPECT_EQ(held.StringView(), L"x777");
}

TEST(AppendToStorage, TheVariableItselfAsTheRightOperand)
{
    Variant storage = MakeString(L"ab");
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(AppendToStorage(storage.Raw(), storage));
    EXPECT_EQ(storage.StringView(), std::wstring(L"abababababababab"));
}

struct StorageRow {
    const char* name;
    Variant stored;
    Variant right;
    VARTYPE tag;
    const wchar_t* expected;
};

TEST(AppendToStorage, VariantsHoldingOtherKinds)
{
    StorageRow rows[] = {
        {"Empty & text", Variant(), MakeString(L"x"), VT_BSTR, L"x"},
        {"Integer & text", MakeInteger(-4), MakeString(L"x"), VT_BSTR, L"-4x"},
        {"Null & text", MakeNull(), MakeString(L"x"), VT_BSTR, L"x"},
        {"Null & Null", MakeNull(), MakeNull(), VT_NULL, L""},
        {"text & Null", MakeString(L"x"), MakeNull(), VT_BSTR, L"x"},
    };
    for (StorageRow& row : rows) {
        RaiseRecorder recorder;
        ASSERT_TRUE(AppendToStorage(row.stored.Raw(), row.right)) << row.name;
        ASSERT_EQ(row.stored.Tag(), row.tag) << row.name;
        if (row.tag == VT_BSTR)
            EXPECT_EQ(row.stored.StringView(), row.expected) << row.name;
        EXPECT_EQ(recorder.Count(), 0u) << row.name;
    }
}

TEST(AppendToStorage, TypedStorageOfAnotherKindIsRefused)
{
    SHORT number = 5;
    Variant byRef;
    byRef.SetByRef(VT_I2, &number);
    RaiseRecorder recorder;
    EXPECT_FALSE(AppendToStorage(byRef.Raw(), MakeString(L"x")));
    EXPECT_EQ(recorder.Last(), 10080);
    EXPECT_EQ(number, 5);
}

} // namespace
} // namespace brannoc
