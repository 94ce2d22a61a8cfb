#pragma once
// Table rows for the built-in functions: an expression printed with Debug.Print inside Main and either
// the debug text it must print or the run-time error number it must raise.
#include "code/ProgramRunner.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace brannoc::testing {

struct BuiltinRow {
    const char* expression;
    const wchar_t* printed; // null for rows that raise
    long error = 0;
};

inline std::ostream& operator<<(std::ostream& out, const BuiltinRow& row) { return out << row.expression; }

// Rows share these declarations: s holds "Hello World", n the Null value, e stays Empty, and the dynamic
// array d is not dimensioned.
inline void CheckBuiltinRow(const BuiltinRow& row)
{
    const auto result = RunProgram(JoinLines({"Sub Main", "  Dim s As String, n, e, d() As Integer",
                                              "  s = \"Hello World\": n = Null",
                                              std::string("  Debug.Print ") + row.expression, "End Sub"}));
    ASSERT_EQ(result.parse, ParseResult::Okay) << row.expression;
    if (row.printed) {
        EXPECT_TRUE(result.runErrors.empty())
            << row.expression << " raised " << (result.runErrors.empty() ? 0 : result.runErrors[0].number);
        EXPECT_EQ(result.output, std::wstring(row.printed) + L"\r\n") << row.expression;
    } else {
        ASSERT_EQ(result.runErrors.size(), 1u) << row.expression << " printed " << ::testing::PrintToString(result.output);
        EXPECT_EQ(result.runErrors[0].number, row.error) << row.expression;
        EXPECT_EQ(result.output, L"") << row.expression;
    }
}

class BuiltinRowTest : public ::testing::TestWithParam<BuiltinRow> {};

} // namespace brannoc::testing
