#include "exec/ValueStack.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

TEST(ValueStackTest, GrowingKeepsEveryValue)
{
    ValueStack stack;
    // Far past the initial capacity, so the slots move several times.
    for (long i = 0; i < 5000; ++i) {
        Variant* slot = stack.Push();
        ASSERT_NE(slot, nullptr);
        EXPECT_EQ(slot->Tag(), VT_EMPTY) << "fresh slot " << i;
        if (i % 2)
            slot->SetLong(i);
        else
            ASSERT_TRUE(slot->SetString(std::to_wstring(i)));
    }
    ASSERT_EQ(stack.Size(), 5000u);
    for (long i = 0; i < 5000; ++i) {
        if (i % 2)
            EXPECT_EQ(stack.At(i).Long(), i) << "slot " << i;
        else
            EXPECT_EQ(stack.At(i).StringView(), std::to_wstring(i)) << "slot " << i;
    }
}

TEST(ValueStackTest, PoppedAndCutSlotsComeBackEmpty)
{
    ValueStack stack;
    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(stack.Push()->SetString(std::wstring_view(L"text")));
    stack.Pop();
    EXPECT_EQ(stack.Size(), 9u);
    stack.CutBack(3);
    EXPECT_EQ(stack.Size(), 3u);
    EXPECT_EQ(stack.Top().StringView(), L"text");
    stack.CutBack(5);
    EXPECT_EQ(stack.Size(), 3u) << "cutting back above the size changes nothing";
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(stack.Push()->Tag(), VT_EMPTY) << "reused slot " << i;
    stack.CutBack(0);
    EXPECT_TRUE(stack.IsEmpty());
}

} // namespace
} // namespace brannoc
