#pragma once
// The engine's error object: the run-time error raised last, as the language's Err shows it.
#include <string>

namespace brannoc {

struct ErrorRecord {
    long number = 0;
    std::wstring description;
    std::wstring source;
    long helpContext = 0;
    std::wstring helpFile;
    // Set by Declare calls; Clear leaves it alone, as the language's Err.Clear does.
    long lastDllError = 0;

    void Clear()
    {
        number = 0;
        description.clear();
        source.clear();
        helpFile.clear();
        helpContext = 0;
    }
};

} // namespace brannoc
