#pragma once
// One open file stream of a macro: its mode, access and record length, the current record of a Random
// stream, and the file itself, read through a small buffer and written straight through (so that what a
// statement wrote is in the file when the statement ends, and Close has nothing left to flush).
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace brannoc {

enum class StreamMode : int { kInput = 1, kOutput = 2, kRandom = 4, kAppend = 8, kBinary = 32 };

enum StreamAccess : int { kAccessRead = 1, kAccessWrite = 2, kAccessReadWrite = 3, kAccessDefault = 7 };

// What the Open statement's lock clause denies other openers.
enum class StreamSharing : int { kShared = 0, kLockRead = 1, kLockWrite = 2, kLockReadWrite = 3 };

// The end-of-file mark of sequential text (Ctrl-Z).
constexpr int kTextEndMark = 26;

class FileStream final {
public:
    // Opens path; null when the system refuses it (nothing raised here).
    static std::unique_ptr<FileStream> Open(const std::wstring& path, StreamMode mode, int access,
                                            StreamSharing sharing, long recordLength);
    ~FileStream();
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;

    StreamMode Mode() const { return m_mode; }
    bool IsSequential() const
    {
        return m_mode == StreamMode::kInput || m_mode == StreamMode::kOutput || m_mode == StreamMode::kAppend;
    }
    bool CanRead() const { return m_canRead; }
    bool CanWrite() const { return m_canWrite; }
    long RecordLength() const { return m_recordLength; }
    long CurrentRecord() const { return m_currentRecord; }
    void SetCurrentRecord(long record) { m_currentRecord = record; }

    // The 0-based byte position of the next transfer.
    long long Position() const { return m_position; }
    void SetPosition(long long position) { m_position = position; }
    // The file's length in bytes; -1 when the system cannot tell.
    long long Length() const;
    // The next byte without taking it, or -1 at the end of the file.
    int PeekByte();
    int ReadByte();
    // Reads up to count bytes at the position; the number read (fewer at the end), -1 on a system error.
    long ReadBytes(char* target, std::size_t count);
    // Writes all bytes at the position (at the end for Append); false when the system refused.
    [[nodiscard]] bool WriteBytes(const char* data, std::size_t count);
    // True at the end of a sequential text: the end of the file or the Ctrl-Z mark.
    bool AtTextEnd();
    // The operating system's handle of the file.
    std::intptr_t SystemHandle() const;
    // Locks or unlocks count bytes from offset without waiting; false when refused. The position stays.
    [[nodiscard]] bool LockBytes(long long offset, long long count, bool lock);

private:
    FileStream(int descriptor, StreamMode mode, bool canRead, bool canWrite, long recordLength);
    [[nodiscard]] bool Fill();

    int m_descriptor;
    StreamMode m_mode;
    bool m_canRead;
    bool m_canWrite;
    long m_recordLength;
    long m_currentRecord = 1;
    long long m_position = 0;
    // Bytes read ahead from the file: m_bufferLength of them, from file offset m_bufferStart.
    static constexpr std::size_t kBufferSize = 4096;
    std::unique_ptr<char[]> m_buffer;
    long long m_bufferStart = 0;
    std::size_t m_bufferLength = 0;
};

} // namespace brannoc
