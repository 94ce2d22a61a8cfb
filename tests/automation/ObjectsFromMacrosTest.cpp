// Automation objects that macros reach themselves: a method without a value called as a statement,
// an active object found again with GetObject, and For Each over an object's enumerator.
#include "automation/FakeObject.h"
#include "code/ProgramRunner.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using testing::FakeObject;

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

TEST(ObjectsFromMacros, ACallStatementAsksForNoResult)
{
    FakeObject object;
    const auto result = RunWith(object, {"target.Store 12", "Call target.Store(13)", "Debug.Print target.Value"});
    ASSERT_EQ(ParseResult::Okay, result.parse);
    EXPECT_TRUE(result.runErrors.empty()) << (result.runErrors.empty() ? 0 : result.runErrors[0].number);
    EXPECT_EQ(L"13&\r\n", result.output);
    ASSERT_EQ(3u, object.calls.size());
    EXPECT_EQ(DISPATCH_METHOD, object.calls[0].flags);
    EXPECT_EQ(DISPATCH_METHOD, object.calls[1].flags);
}

TEST(ObjectsFromMacros, AMethodReadAsAValueStillAsksForOne)
{
    FakeObject object;
    const auto result = RunWith(object, {"Dim v", "v = target.Store(1)"});
    ASSERT_EQ(ParseResult::Okay, result.parse);
    ASSERT_EQ(1u, result.runErrors.size());
    EXPECT_EQ(10080, result.runErrors[0].number) << "the server refuses to give a value and names no argument";
}

// A class identifier no server is registered for: the running object table alone knows it.
const CLSID kActiveClass = {0x6b1d3c52, 0x41a7, 0x4e0b, {0x9d, 0x1f, 0x2c, 0x55, 0x80, 0x13, 0x7e, 0x42}};
constexpr const char* kActiveClassText = "{6B1D3C52-41A7-4E0B-9D1F-2C5580137E42}";

class ActiveObjectTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
    void TearDown() override { CoUninitialize(); }
};

TEST_F(ActiveObjectTest, GetObjectFindsARegisteredActiveObjectAndNoneWhenRevoked)
{
    FakeObject object;
    object.value = 31;
    DWORD cookie = 0;
    ASSERT_EQ(S_OK, RegisterActiveObject(&object, kActiveClass, ACTIVEOBJECT_STRONG, &cookie));
    const std::string find = std::string("Set o = GetObject(, \"") + kActiveClassText + "\")";
    auto result = testing::RunProgram(
        testing::JoinLines({"Sub Main", "Dim o As Object", find, "Debug.Print o.Value", "o.Value = 4", "End Sub"}));
    ASSERT_EQ(ParseResult::Okay, result.parse);
    EXPECT_TRUE(result.runErrors.empty());
    EXPECT_EQ(L"31&\r\n", result.output);
    EXPECT_EQ(4, object.value) << "the macro reached the registered object itself";
    ASSERT_EQ(S_OK, RevokeActiveObject(cookie, nullptr));
    result = testing::RunProgram(testing::JoinLines({"Sub Main", "Dim o As Object", find, "End Sub"}));
    ASSERT_EQ(1u, result.runErrors.size());
    EXPECT_EQ(10096, result.runErrors[0].number);
    EXPECT_EQ(L"ActiveX Automation: no object currently active.", result.runErrors[0].description);
}

TEST_F(ActiveObjectTest, CreateObjectOfAClassThatFailsRaises10092)
{
    auto result = testing::RunProgram(testing::JoinLines(
        {"Sub Main", "Dim o As Object", std::string("Set o = CreateObject(\"") + kActiveClassText + "\")", "End Sub"}));
    ASSERT_EQ(1u, result.runErrors.size());
    EXPECT_EQ(10092, result.runErrors[0].number);
}

} // namespace
} // namespace brannoc
