#pragma once
// The number and description of the run-time error raised last (what the language's Err shows).
#include <string>

namespace brannoc {

struct ErrorRecord {
    long number = 0;
    std::wstring description;

    void Clear()
    {
        number = 0;
        description.clear();
    }
};

} // namespace brannoc
