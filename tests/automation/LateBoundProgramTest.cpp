// Macros that use an automation object held in an Object variable: every member access goes through
// the object's IDispatch.
#include "automation/FakeObject.h"
#include "code/ProgramRunner.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using testing::FakeObject;

// Runs the lines as Main of a macro whose first module-level variable, "target", holds object.
testing::ProgramResult RunWith(FakeObject& object, const std::vector<std::string>& lines)
{
    std::vector<std::string> text{"Dim target As Object", "Sub Main"};
    text.insert(text.end(), lines.begin(), lines.end());
    text.push_back("End Sub");
    return testing::RunProgram(testing::JoinLines(text), {}, 100000, [&](ModuleInstance& instance) {
        VARIANT& slot = instance.Slot(0);
        slot.vt = VT_DISPATCH;
        slot.pdispVal = &object;
        object.AddRef();
    });
}

TEST(LateBoundProgram, MembersOfAnAutomationObjectAreCalledThroughInvoke)
{
    FakeObject object;
    const auto result = RunWith(object, {"Debug.Print target.Value", "target.Value = 5", "Debug.Print target.Add(1, 2)",
                                         "Debug.Print target.Add(b:=1, a:=2)", "With target", "  .Value = 9",
                                         "  Debug.Print .Items(1); .Value", "End With"});
    ASSERT_EQ(ParseResult::Okay, result.parse);
    EXPECT_TRUE(result.runErrors.empty());
    EXPECT_EQ(L"7&\r\n21&\r\n12&\r\n20&9&\r\n", result.output);
    // Items(1) is tried with its argument first, then read without it and indexed.
    ASSERT_EQ(8u, object.calls.size());
    EXPECT_EQ(DISPATCH_PROPERTYPUT, object.calls[1].flags);
    EXPECT_EQ(DISPATCH_METHOD | DISPATCH_PROPERTYGET, object.calls[2].flags);
    for (const FakeObject::Call& call : object.calls)
        EXPECT_EQ(0x409u, call.locale);
}

TEST(LateBoundProgram, AVariableArgumentGoesByReference)
{
    FakeObject object;
    const auto result = RunWith(object, {"Dim n As Long", "n = 4", "Debug.Print target.Add(n, 1)"});
    ASSERT_EQ(ParseResult::Okay, result.parse);
    ASSERT_EQ(1u, object.calls.size());
    ASSERT_EQ(2u, object.calls[0].arguments.size());
    EXPECT_EQ(VT_BYREF | VT_I4, object.calls[0].arguments[1].vt) << "the variable n";
    EXPECT_EQ(VT_I2, object.calls[0].arguments[0].vt) << "the constant 1";
    EXPECT_EQ(L"14&\r\n", result.output);
}

TEST(LateBoundProgram, ServerErrorsStopTheRunWithTheirNumbers)
{
    FakeObject object;
    const auto result = RunWith(object, {"Debug.Print 1", "target.Fly", "Debug.Print 2"});
    ASSERT_EQ(ParseResult::Okay, result.parse);
    EXPECT_EQ(L"1%\r\n", result.output);
    ASSERT_EQ(1u, result.runErrors.size());
    EXPECT_EQ(10091, result.runErrors[0].number);
    EXPECT_EQ(L"ActiveX Automation: no such property or method.", result.runErrors[0].description);
}

TEST(LateBoundProgram, AVariantHoldingAnObjectPassesIndexesToItsDefaultMember)
{
    FakeObject object;
    const auto result = RunWith(object, {"Dim v As Variant", "Set v = target", "Debug.Print v(3)"});
    ASSERT_EQ(ParseResult::Okay, result.parse);
    EXPECT_TRUE(result.runErrors.empty());
    EXPECT_EQ(L"1003&\r\n", result.output);
    ASSERT_EQ(1u, object.calls.size());
    EXPECT_EQ(DISPID_VALUE, object.calls[0].member);
    EXPECT_EQ(std::vector<long>{3}, object.innerIndexes);
}

TEST(LateBoundProgram, AServerExceptionKeepsTheServersDescription)
{
    FakeObject object;
    const auto result = RunWith(object, {"On Error Resume Next", "target.Fail", "Debug.Print Err.Description",
                                         "Debug.Print Err.Number = &H80040123"});
    ASSERT_EQ(ParseResult::Okay, result.parse);
    EXPECT_TRUE(result.runErrors.empty());
    EXPECT_EQ(L"\"server failed\"\r\nTrue\r\n", result.output);
}

} // namespace
} // namespace brannoc
