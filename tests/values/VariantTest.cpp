#include "values/Variant.h"
#include "values/TaskMemory.h"
#include "values/ValueError.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

TEST(BstrTest, KeepsEmbeddedNulsAndLength)
{
    const wchar_t text[] = {L'a', 0, L'b'};
    Bstr value(text, 3);
    EXPECT_EQ(value.Length(), 3u);
    EXPECT_EQ(value.View(), std::wstring_view(text, 3));
}

TEST(BstrTest, CopyIsDeepAndMoveSteals)
{
    Bstr original(std::wstring_view(L"abc"));
    Bstr copy(original);
    EXPECT_NE(copy.Get(), original.Get());
    EXPECT_EQ(copy.View(), L"abc");
    Bstr moved(std::move(copy));
    EXPECT_EQ(copy.Get(), nullptr);
    EXPECT_EQ(moved.View(), L"abc");
    BSTR raw = moved.Detach();
    EXPECT_EQ(moved.Get(), nullptr);
    Bstr again;
    again.Attach(raw);
    EXPECT_EQ(again.View(), L"abc");
}

TEST(VariantTest, DefaultIsEmptyAndSettersSetTags)
{
    Variant value;
    EXPECT_EQ(value.Tag(), VT_EMPTY);
    value.SetLong(7);
    EXPECT_EQ(value.Tag(), VT_I4);
    EXPECT_EQ(value.Long(), 7);
    value.SetDouble(1.5);
    EXPECT_EQ(value.Tag(), VT_R8);
    EXPECT_EQ(value.Double(), 1.5);
    ASSERT_TRUE(value.SetString(std::wstring_view(L"xy")));
    EXPECT_EQ(value.Tag(), VT_BSTR);
    EXPECT_EQ(value.StringView(), L"xy");
    value.SetBoolean(true);
    EXPECT_EQ(value.Boolean(), VARIANT_TRUE);
    DECIMAL dec{};
    dec.Lo64 = 12345;
    dec.scale = 2;
    value.SetDecimal(dec);
    EXPECT_EQ(value.Tag(), VT_DECIMAL);
    EXPECT_EQ(value.Decimal().Lo64, 12345u);
    EXPECT_EQ(value.Decimal().scale, 2);
}

TEST(VariantTest, CopyDuplicatesStringAndMoveLeavesEmpty)
{
    Variant original;
    ASSERT_TRUE(original.SetString(std::wstring_view(L"text")));
    Variant copy(original);
    EXPECT_NE(copy.String(), original.String());
    EXPECT_EQ(copy.StringView(), L"text");
    Variant moved(std::move(copy));
    EXPECT_EQ(copy.Tag(), VT_EMPTY);
    EXPECT_EQ(moved.StringView(), L"text");
}

TEST(VariantTest, FollowByRefChainReachesTheEnd)
{
    Variant target;
    target.SetInteger(42);
    Variant first;
    first.SetByRef(VT_VARIANT, &target.Raw());
    Variant second;
    second.SetByRef(VT_VARIANT, &first.Raw());
    EXPECT_EQ(FollowByRefChain(&second.Raw()), &target.Raw());
    Variant copy;
    ASSERT_TRUE(copy.CopyIndirectFrom(second.Raw()));
    EXPECT_EQ(copy.Tag(), VT_I2);
    EXPECT_EQ(copy.Integer(), 42);
}

TEST(SafeArrayTest, LockGivesDataAndCopyIsDeep)
{
    SafeArray array(SafeArrayCreateVector(VT_I4, 0, 3));
    ASSERT_NE(array.Get(), nullptr);
    {
        SafeArrayLock lock(array.Get());
        ASSERT_TRUE(lock.IsLocked());
        static_cast<LONG*>(lock.Data())[2] = 9;
    }
    SafeArray copy;
    ASSERT_TRUE(copy.CopyFrom(array.Get()));
    SafeArrayLock lock(copy.Get());
    EXPECT_EQ(static_cast<LONG*>(lock.Data())[2], 9);
}

TEST(VariantTest, ReplaceStringFreesTheOldStringAndTakesTheNew)
{
    BSTR slot = SysAllocString(L"old");
    ReplaceString(slot, Bstr(std::wstring_view(L"new text")));
    EXPECT_EQ(std::wstring_view(slot, SysStringLen(slot)), L"new text");
    BSTR empty = nullptr;
    ReplaceString(empty, Bstr());
    EXPECT_EQ(empty, nullptr);
    SysFreeString(slot);
}

// Copies of strings, arrays and records fail only when memory runs out: that is the error they give.
TEST(VariantTest, CopyFailureOfOwnedValuesIsOutOfMemory)
{
    Variant text;
    ASSERT_TRUE(text.SetString(std::wstring_view(L"x")));
    EXPECT_EQ(CopyFailure(text.Raw()), kErrorOutOfMemory);
    Variant reference;
    reference.SetByRef(VT_VARIANT, &text.Raw());
    EXPECT_EQ(CopyFailure(reference.Raw()), kErrorOutOfMemory);
    VARIANT array;
    VariantInit(&array);
    array.vt = VT_ARRAY | VT_I4;
    EXPECT_EQ(CopyFailure(array), kErrorOutOfMemory);
    array.vt = VT_BYREF | VT_ARRAY | VT_VARIANT;
    EXPECT_EQ(CopyFailure(array), kErrorOutOfMemory);
    VARIANT record;
    VariantInit(&record);
    record.vt = VT_RECORD;
    EXPECT_EQ(CopyFailure(record), kErrorOutOfMemory);
    VARIANT other;
    VariantInit(&other);
    other.vt = VT_UNKNOWN;
    EXPECT_EQ(CopyFailure(other), kErrorAutomation);
}

TEST(TaskMemoryTest, OwnsTheBlockUntilHandedOn)
{
    TaskMemory block = TaskMemory::Allocate(16);
    ASSERT_TRUE(block);
    static_cast<char*>(block.Get())[15] = 'x';
    TaskMemory moved(std::move(block));
    EXPECT_FALSE(block);
    void* raw = moved.Detach();
    EXPECT_FALSE(moved);
    ASSERT_NE(raw, nullptr);
    CoTaskMemFree(raw);
    TaskMemory out;
    *out.Out() = CoTaskMemAlloc(8);
    EXPECT_TRUE(out);
}

} // namespace
} // namespace brannoc
