// Lines that fail to parse after the parser noted one of their statements (a GoTo, On Error GoTo or
// Resume waiting for its label, the exit or the opener of a block): such statements must live until the
// procedure ends, or resolving the labels and closing the blocks writes into freed memory. Each source is
// compiled with error recovery on, the bodies too, and the process's heaps are checked afterwards.
#include "frontend/BodyCompiler.h"
#include "frontend/Compiler.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace brannoc {
namespace {

class OneSource final : public ModuleSource {
public:
    explicit OneSource(std::string text) : m_text(std::move(text)) {}
    std::optional<ModuleText> Read(std::string_view name) override
    {
        if (name != "Macro")
            return std::nullopt;
        return ModuleText{m_text, false};
    }

private:
    std::string m_text;
};

bool HeapsAreSound()
{
    HANDLE heaps[128];
    const DWORD count = GetProcessHeaps(128, heaps);
    for (DWORD i = 0; i < count && i < 128; ++i) {
        if (!HeapValidate(heaps[i], 0, nullptr))
            return false;
    }
    return true;
}

TEST(DroppedLineTest, StatementsTheParserNotedOutliveTheirFailedLine)
{
    const char* const kSources[] = {
        // A GoTo in a single-line If, the line then failing (the fuzzer's finding).
        "Sub Main\r\n    Dim n As Long\r\n    n = -1\r\nAgain:\r\n    n = n + 5\r\n"
        "If n < 15 Then GoTo Again End\r\nEnd Sub\r\n",
        "Sub Main\r\nAgain:\r\n    If n Then GoTo Again Else GoTo Again )\r\nEnd Sub\r\n",
        // A GoTo, an On Error GoTo and a Resume followed by a failing statement on their line.
        "Sub Main\r\n    GoTo Later : x = 1 +\r\nLater:\r\nEnd Sub\r\n",
        "Sub Main\r\n    On Error GoTo Handler : x = (\r\nHandler:\r\n    Resume Handler : y = *\r\nEnd Sub\r\n",
        // The exits and openers of blocks.
        "Sub Main\r\n    If x Then\r\n    ElseIf y Then : z = 1 +\r\n    Else : z = )\r\n    End If\r\nEnd Sub\r\n",
        "Sub Main\r\n    For i = 1 To 3 : x = )\r\n    Next i\r\nEnd Sub\r\n",
        "Sub Main\r\n    Do : Exit Do : x = ]\r\n    Loop\r\nEnd Sub\r\n",
        "Sub Main\r\n    Select Case x\r\n    Case 1 : GoTo Done : y = +\r\n    End Select\r\nDone:\r\nEnd Sub\r\n",
        "Sub Main\r\n    While x : If y Then Exit Sub Else GoTo Out ]\r\n    Wend\r\nOut:\r\nEnd Sub\r\n",
    };
    for (const char* text : kSources) {
        // Several times: freed blocks are reused by the next compile, where a stale write does damage.
        for (int round = 0; round < 20; ++round) {
            OneSource source(text);
            Compiler compiler(source);
            BodyCompiler bodies;
            compiler.SetBodyCompiler(&bodies);
            compiler.SetErrorLimit(20);
            EXPECT_NE(compiler.Parse("Macro", 0), ParseResult::Okay) << text;
            EXPECT_FALSE(compiler.Errors().empty()) << text;
        }
        ASSERT_TRUE(HeapsAreSound()) << text;
    }
}

} // namespace
} // namespace brannoc
