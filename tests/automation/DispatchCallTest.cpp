// Late-bound member access on an automation object: what reaches Invoke (member, flags, locale, argument
// order, named arguments, the assigned value) and how its failures become the language's errors.
#include "automation/DispatchCall.h"
#include "automation/FakeObject.h"
#include "values/RaiseRecorder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brannoc {
namespace {

using automation::DispatchArguments;
using automation::InvokeMember;
using testing::FakeObject;

VARIANT LongValue(long number)
{
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_I4;
    value.lVal = number;
    return value;
}

class DispatchCallTest : public ::testing::Test {
protected:
    bool Access(const wchar_t* name, MemberAccess access, std::vector<VARIANT> values,
                std::vector<std::wstring> named = {})
    {
        namedNames = std::move(named);
        arguments = std::move(values);
        DispatchArguments call;
        call.values = arguments.empty() ? nullptr : arguments.data();
        call.count = static_cast<int>(arguments.size());
        call.namedArguments = &namedNames;
        return InvokeMember(&object, name, access, call, result);
    }

    FakeObject object;
    test::RaiseRecorder raised;
    std::vector<VARIANT> arguments;
    std::vector<std::wstring> namedNames;
    Variant result;
};

TEST_F(DispatchCallTest, GetPassesFlagsLocaleAndAnswersTheValue)
{
    ASSERT_TRUE(Access(L"value", MemberAccess::Get, {}));
    ASSERT_EQ(1u, object.calls.size());
    EXPECT_EQ(FakeObject::kValue, object.calls[0].member);
    EXPECT_EQ(DISPATCH_METHOD | DISPATCH_PROPERTYGET, object.calls[0].flags);
    EXPECT_EQ(0x409u, object.calls[0].locale);
    EXPECT_EQ(std::vector<LCID>{0x409}, object.nameLocales);
    EXPECT_EQ(VT_I4, result.Tag());
    EXPECT_EQ(7, result.Long());
    EXPECT_EQ(0u, raised.Count());
}

TEST_F(DispatchCallTest, PositionalArgumentsArriveLastFirst)
{
    ASSERT_TRUE(Access(L"Add", MemberAccess::Call, {LongValue(1), LongValue(2)}));
    const FakeObject::Call& call = object.calls.at(0);
    EXPECT_EQ(DISPATCH_METHOD, call.flags);
    ASSERT_EQ(2u, call.arguments.size());
    EXPECT_EQ(2, call.arguments[0].lVal) << "the last argument comes first";
    EXPECT_EQ(1, call.arguments[1].lVal);
    EXPECT_TRUE(call.named.empty());
    EXPECT_FALSE(call.resultWanted) << "a call asks for no result";
    EXPECT_EQ(VT_EMPTY, result.Tag());
}

TEST_F(DispatchCallTest, NamedArgumentsCarryTheirIdentifiers)
{
    // Add b:=3, a:=4 -> the named arguments in their written order with their identifiers.
    ASSERT_TRUE(Access(L"Add", MemberAccess::Get, {LongValue(3), LongValue(4)}, {L"b", L"a"}));
    const FakeObject::Call& call = object.calls.at(0);
    ASSERT_EQ(2u, call.named.size());
    EXPECT_EQ(FakeObject::kParamB, call.named[0]);
    EXPECT_EQ(3, call.arguments[0].lVal);
    EXPECT_EQ(FakeObject::kParamA, call.named[1]);
    EXPECT_EQ(4, call.arguments[1].lVal);
}

TEST_F(DispatchCallTest, LetAndSetPassTheValueAsThePropertyPutArgument)
{
    ASSERT_TRUE(Access(L"Value", MemberAccess::Let, {LongValue(42)}));
    ASSERT_TRUE(Access(L"Value", MemberAccess::Set, {LongValue(43)}));
    ASSERT_EQ(2u, object.calls.size());
    EXPECT_EQ(DISPATCH_PROPERTYPUT, object.calls[0].flags);
    EXPECT_EQ(DISPATCH_PROPERTYPUTREF, object.calls[1].flags);
    for (const FakeObject::Call& call : object.calls) {
        ASSERT_EQ(std::vector<DISPID>{DISPID_PROPERTYPUT}, call.named);
        ASSERT_EQ(1u, call.arguments.size());
    }
    EXPECT_EQ(43, object.value);
}

TEST_F(DispatchCallTest, AMemberWithoutParametersIndexesTheArrayItAnswers)
{
    ASSERT_TRUE(Access(L"Items", MemberAccess::Get, {LongValue(2)}));
    EXPECT_EQ(VT_I4, result.Tag());
    EXPECT_EQ(30, result.Long());
    EXPECT_FALSE(Access(L"Items", MemberAccess::Get, {LongValue(5)}));
    EXPECT_EQ(10098, raised.Last());
}

TEST_F(DispatchCallTest, AMemberWithoutParametersPassesTheArgumentsToItsObjectsDefaultMember)
{
    FakeObject inner;
    object.inner = &inner;
    ASSERT_TRUE(Access(L"Inner", MemberAccess::Get, {LongValue(3)}));
    EXPECT_EQ(std::vector<long>{3}, inner.innerIndexes);
    EXPECT_EQ(1003, result.Long());
}

TEST_F(DispatchCallTest, FailuresBecomeTheLanguagesErrors)
{
    const struct {
        const wchar_t* member;
        std::vector<VARIANT> values;
        long expected;
    } rows[] = {
        {L"Missing", {}, 10091},                      // no such member
        {L"Value", {LongValue(1), LongValue(2)}, 10097}, // too many arguments, not an array either
        {L"Fail", {}, static_cast<long>(0x80040123)}, // the server's own status
        {L"Picky", {LongValue(1), LongValue(2), LongValue(3)}, 10083}, // third parameter's type
    };
    for (const auto& row : rows) {
        raised.Reset();
        EXPECT_FALSE(Access(row.member, MemberAccess::Call, row.values)) << std::string(row.member, row.member + wcslen(row.member));
        EXPECT_EQ(row.expected, raised.Last()) << std::string(row.member, row.member + wcslen(row.member));
        EXPECT_EQ(1u, raised.Count());
    }
}

TEST_F(DispatchCallTest, AnUnknownNamedArgumentIsReported)
{
    EXPECT_FALSE(Access(L"Add", MemberAccess::Get, {LongValue(1)}, {L"c"}));
    EXPECT_EQ(10099, raised.Last());
    EXPECT_TRUE(object.calls.empty());
}

TEST_F(DispatchCallTest, NothingIsReportedWithoutACall)
{
    DispatchArguments none;
    EXPECT_FALSE(InvokeMember(nullptr, L"Value", MemberAccess::Get, none, result));
    EXPECT_EQ(10094, raised.Last());
}

} // namespace
} // namespace brannoc
