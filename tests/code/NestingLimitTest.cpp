// The nesting limits keep the compiler and the running code inside the stack of a host thread of 1 MB:
// the golden scripts at the limits compile and run, and those one level past them report 10603, on a
// thread whose stack is 1 MB.
#include "ProgramRunner.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#ifndef BRANNOC_GOLDEN_DIR
#error "BRANNOC_GOLDEN_DIR must name the folder of the golden scripts"
#endif

namespace brannoc {
namespace {

using testing::ProgramResult;
using testing::RunProgram;

std::string ReadLimitScript(const char* name)
{
    std::ifstream in(std::filesystem::path(BRANNOC_GOLDEN_DIR) / "limits" / name, std::ios::binary);
    std::stringstream buffer;
    buffer << in.rdbuf();
    std::string text;
    for (const char c : buffer.str()) {
        if (c == '\n' && (text.empty() || text.back() != '\r'))
            text += '\r';
        text += c;
    }
    return text;
}

struct Job {
    std::string text;
    ProgramResult result;
};

DWORD WINAPI RunJob(void* parameter)
{
    auto* job = static_cast<Job*>(parameter);
    job->result = RunProgram(job->text);
    return 0;
}

// Runs the program on a new thread with a 1 MB stack; a stack overflow there ends the test program.
ProgramResult RunOnSmallStack(const std::string& text)
{
    Job job{text, {}};
    HANDLE thread = CreateThread(nullptr, 1 << 20, &RunJob, &job, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    EXPECT_NE(thread, nullptr);
    if (thread) {
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
    }
    return job.result;
}

TEST(NestingLimits, AtTheLimitsRunOnAOneMegabyteStack)
{
    const std::string text = ReadLimitScript("depth_at_limit.bas");
    ASSERT_FALSE(text.empty());
    const ProgramResult result = RunOnSmallStack(text);
    EXPECT_EQ(result.parse, ParseResult::Okay);
    EXPECT_TRUE(result.finished);
    EXPECT_EQ(result.output, L"1%\r\n199%\r\n2%\r\n7%\r\n\"inline\"\r\n-1%\r\n");
}

TEST(NestingLimits, PastTheLimitsAreCompileErrorsOnAOneMegabyteStack)
{
    for (const char* name : {"depth_parentheses.bas", "depth_calls.bas", "depth_builtins.bas", "depth_const.bas",
                             "depth_inline_if.bas", "depth_unary.bas"}) {
        SCOPED_TRACE(name);
        const std::string text = ReadLimitScript(name);
        ASSERT_FALSE(text.empty());
        const ProgramResult result = RunOnSmallStack(text);
        EXPECT_NE(result.parse, ParseResult::Okay);
        ASSERT_EQ(result.compileErrors.size(), 1u);
        EXPECT_EQ(result.compileErrors[0].number, 10603);
    }
}

} // namespace
} // namespace brannoc
