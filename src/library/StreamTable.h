#pragma once
// The file streams one engine has open, by stream number 1 to 511. FreeFile hands out numbers from 256
// up; numbers below 256 are the macro's own choice. Every lookup that fails raises the language's error.
#include "library/FileStream.h"
#include "values/ValueError.h"

#include <array>
#include <memory>
#include <string>

namespace brannoc {

class StreamTable final {
public:
    static constexpr int kMaxNumber = 511;
    static constexpr int kFirstFreeFileNumber = 256;
    static constexpr long kMaxRecordLength = 32767;

    StreamTable() = default;
    StreamTable(const StreamTable&) = delete;
    StreamTable& operator=(const StreamTable&) = delete;

    // Opens path as stream number; false after raising 10056, 10054, 10057 or 10051.
    [[nodiscard]] bool Open(long number, const std::wstring& path, StreamMode mode, int access,
                            StreamSharing sharing, long recordLength);
    // The open stream of that number; null after raising 10052.
    FileStream* Find(long number) const;
    // Closes stream number; false after raising 10052.
    [[nodiscard]] bool Close(long number);
    void CloseAll();
    // The lowest free number from 256 to 511, or 0 when all are open.
    int FreeNumber() const;
    int OpenCount() const;

private:
    std::array<std::unique_ptr<FileStream>, kMaxNumber + 1> m_streams;
};

// The stream table of the engine whose macro is running; null when none runs.
StreamTable* CurrentStreams();
// The open stream of that number in the running engine; null after raising 10052.
FileStream* CurrentStream(long number);

} // namespace brannoc
