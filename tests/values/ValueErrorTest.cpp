#include "values/ValueError.h"

#include "host/ThisModule.h"

#include "RaiseRecorder.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

TEST(ValueErrorHook, RaiseCallsTheHandlerAndAnswersFalse)
{
    test::RaiseRecorder raised;
    EXPECT_FALSE(RaiseValueError(kErrorOverflow));
    EXPECT_EQ(raised.Last(), 10062);
    EXPECT_EQ(raised.Count(), 1u);
}

TEST(ValueErrorHook, WithoutHandlerStillAnswersFalse)
{
    RaiseFn previous = SetRaiseHandler(nullptr);
    EXPECT_FALSE(RaiseValueError(kErrorTypeMismatch));
    SetRaiseHandler(previous);
}

// The numbers the value layer raises carry these string-table messages.
TEST(ValueErrorTexts, NumbersHaveTheirMessages)
{
    const struct {
        long number;
        const wchar_t* text;
    } rows[] = {
        {kErrorFloatInvalid, L"Expression has an invalid floating point operation."},
        {kErrorDivideByZero, L"Divide by zero."},
        {kErrorOverflow, L"Overflow."},
        {kErrorUnderflow, L"Expression underflowed minimum representation."},
        {kErrorNullUse, L"Null value can't be used here."},
        {kErrorTypeMismatch, L"Type mismatch."},
        {kErrorAutomation, L"ActiveX Automation error."},
        {kErrorInvalidArgument, L"Invalid function argument value."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(LoadResourceString(static_cast<unsigned>(row.number)), row.text) << row.number;
}

TEST(ValueErrorTexts, ValueWordsComeFromTheStringTable)
{
    EXPECT_EQ(LoadResourceString(11100), L"Null");
    EXPECT_EQ(LoadResourceString(11101), L"False");
    EXPECT_EQ(LoadResourceString(11102), L"True");
    EXPECT_EQ(LoadResourceString(11103), L"Error");
}

} // namespace
} // namespace brannoc
