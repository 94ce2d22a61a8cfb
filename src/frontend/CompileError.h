#pragma once
// The record of one reported compile error, and the interface that receives such records.
#include <string>

namespace brannoc {

// What the host learns about a compile error: the message (with its argument), the module, the text of
// the offending line, its 1-based number and the 0-based column of the offending token.
struct CompileError {
    unsigned number = 0;
    std::wstring message;
    std::string module;
    std::string lineText;
    int line = 0;
    int offset = 0;
};

// Receives each compile error that passes the per-statement and per-compile limits.
class CompileErrorSink {
public:
    virtual ~CompileErrorSink() = default;
    virtual void Report(const CompileError& error) = 0;
};

} // namespace brannoc
