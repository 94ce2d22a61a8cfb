#include "exec/ErrorMessages.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

struct MessageCase {
    long number;
    const wchar_t* text;
};

const MessageCase kMessageCases[] = {
    // Run-time messages from the string table.
    {10000, L"Execution interrupted."},
    {10001, L"Out of memory."},
    {10008, L"Invalid '#Uses \"module\" comment."},
    {10023, L"Array index out of range."},
    {10061, L"Divide by zero."},
    {10062, L"Overflow."},
    {10071, L"Resume can only be used in an On Error handler."},
    {10081, L"Type mismatch for parameter #1."},
    {10089, L"Type mismatch for parameter #9."},
    {10094, L"ActiveX Automation: Object var is 'Nothing'."},
    {10204, L"Handler is already in use."},
    // No message at all for number 0.
    {0, L""},
    // Numbers without a text, inside and outside the message range, fall back.
    {10002, L"Application specific error."},
    {10205, L"Application specific error."},
    {10999, L"Application specific error."},
    {1000, L"Application specific error."},
    {9999, L"Application specific error."},
    {11000, L"Application specific error."},
    {11002, L"Application specific error."},
    {-5, L"Application specific error."},
    {static_cast<long>(0x80004005UL), L"Application specific error."},
};

TEST(ErrorMessagesTest, MessageForGivesTheTableTextOrTheFallback)
{
    for (const MessageCase& row : kMessageCases) {
        EXPECT_EQ(MessageFor(row.number), row.text) << "number " << row.number;
    }
}

TEST(ErrorMessagesTest, DefaultDescriptionNamesPlatformCodesInHexadecimal)
{
    const MessageCase rows[] = {
        {0, L""},
        {10061, L"Divide by zero."},
        {65535, L"Application specific error."},
        {65536, L"Exception 10000"},
        {-1, L"Exception FFFFFFFF"},
        {static_cast<long>(0x80004005UL), L"Exception 80004005"},
    };
    for (const MessageCase& row : rows)
        EXPECT_EQ(DefaultDescription(row.number), row.text) << "number " << row.number;
}

TEST(ErrorMessagesTest, WithArgumentAddsOneBlankAndQuotes)
{
    EXPECT_EQ(WithArgument(L"Divide by zero.", L"x"), L"Divide by zero. 'x'");
    EXPECT_EQ(WithArgument(L"Expecting ", L"Then"), L"Expecting 'Then'");
    EXPECT_EQ(WithArgument(L"Overflow.", L""), L"Overflow.");
    EXPECT_EQ(WithArgument(L"", L"a"), L" 'a'");
}

TEST(ErrorMessagesTest, LanguageHelpFileReplacesTheLibraryExtension)
{
    const std::wstring& file = LanguageHelpFile();
    ASSERT_GE(file.size(), 4u);
    EXPECT_EQ(file.substr(file.size() - 4), L".HLP");
}

} // namespace
} // namespace brannoc
