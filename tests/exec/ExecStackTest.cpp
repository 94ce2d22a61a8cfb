#include "exec/ExecStack.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

TEST(ExecStackTest, PushAndPopInLastInFirstOutOrder)
{
    ExecStack stack;
    Node nodes[3];
    for (int i = 0; i < 300; ++i)
        ASSERT_TRUE(stack.Push(ExecEntry{&nodes[i % 3], i}));
    EXPECT_EQ(stack.Size(), 300u);
    EXPECT_EQ(stack.Top().state, 299);
    for (int i = 299; i >= 0; --i) {
        ExecEntry entry = stack.Pop();
        EXPECT_EQ(entry.state, i);
        EXPECT_EQ(entry.executor, &nodes[i % 3]);
    }
    EXPECT_TRUE(stack.IsEmpty());
}

TEST(ExecStackTest, PoppingKeepsTheCapacityForReuse)
{
    ExecStack stack;
    Node node;
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(stack.Push(ExecEntry{&node, 0}));
    const std::size_t capacity = stack.Capacity();
    while (!stack.IsEmpty())
        (void)stack.Pop();
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(stack.Push(ExecEntry{&node, 0}));
    EXPECT_EQ(stack.Capacity(), capacity);
}

} // namespace
} // namespace brannoc
