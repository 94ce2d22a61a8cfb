#include "library/FileStream.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/locking.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>

namespace brannoc {

namespace {

int OpenFlags(StreamMode mode, int access)
{
    switch (mode) {
    case StreamMode::kInput: return _O_BINARY | _O_RDONLY | _O_SEQUENTIAL;
    case StreamMode::kOutput: return _O_BINARY | _O_WRONLY | _O_CREAT | _O_TRUNC | _O_SEQUENTIAL;
    case StreamMode::kAppend: return _O_BINARY | _O_WRONLY | _O_CREAT | _O_APPEND | _O_SEQUENTIAL;
    case StreamMode::kRandom:
    case StreamMode::kBinary: break;
    }
    const int base = _O_BINARY | _O_CREAT | _O_RANDOM;
    if (access == kAccessRead)
        return base | _O_RDONLY;
    if (access == kAccessWrite)
        return base | _O_WRONLY;
    return base | _O_RDWR;
}

int ShareFlag(StreamSharing sharing)
{
    switch (sharing) {
    case StreamSharing::kLockRead: return _SH_DENYRD;
    case StreamSharing::kLockWrite: return _SH_DENYWR;
    case StreamSharing::kLockReadWrite: return _SH_DENYRW;
    case StreamSharing::kShared: break;
    }
    return _SH_DENYNO;
}

} // namespace

std::unique_ptr<FileStream> FileStream::Open(const std::wstring& path, StreamMode mode, int access,
                                             StreamSharing sharing, long recordLength)
{
    // Sequential modes force their access; the others read and write unless the statement limits them.
    if (mode == StreamMode::kInput)
        access = kAccessRead;
    else if (mode == StreamMode::kOutput || mode == StreamMode::kAppend)
        access = kAccessWrite;
    if (path.empty())
        return nullptr;
    const int descriptor = _wsopen(path.c_str(), OpenFlags(mode, access), ShareFlag(sharing), _S_IREAD | _S_IWRITE);
    if (descriptor < 0)
        return nullptr;
    const bool canRead = access != kAccessWrite;
    const bool canWrite = access != kAccessRead;
    std::unique_ptr<FileStream> stream(new FileStream(descriptor, mode, canRead, canWrite,
                                                      mode == StreamMode::kRandom ? recordLength : 1));
    if (mode == StreamMode::kAppend)
        stream->m_position = stream->Length();
    return stream;
}

FileStream::FileStream(int descriptor, StreamMode mode, bool canRead, bool canWrite, long recordLength)
    : m_descriptor(descriptor), m_mode(mode), m_canRead(canRead), m_canWrite(canWrite),
      m_recordLength(recordLength), m_buffer(new char[kBufferSize])
{
}

FileStream::~FileStream() { _close(m_descriptor); }

long long FileStream::Length() const { return _filelengthi64(m_descriptor); }

bool FileStream::Fill()
{
    m_bufferLength = 0;
    m_bufferStart = m_position;
    if (_lseeki64(m_descriptor, m_position, SEEK_SET) < 0)
        return false;
    const int got = _read(m_descriptor, m_buffer.get(), kBufferSize);
    if (got < 0)
        return false;
    m_bufferLength = static_cast<std::size_t>(got);
    return true;
}

int FileStream::PeekByte()
{
    if (m_position < m_bufferStart || m_position >= m_bufferStart + static_cast<long long>(m_bufferLength)) {
        if (!Fill() || m_bufferLength == 0)
            return -1;
    }
    return static_cast<unsigned char>(m_buffer[static_cast<std::size_t>(m_position - m_bufferStart)]);
}

int FileStream::ReadByte()
{
    const int c = PeekByte();
    if (c >= 0)
        ++m_position;
    return c;
}

long FileStream::ReadBytes(char* target, std::size_t count)
{
    std::size_t done = 0;
    while (done < count) {
        if (PeekByte() < 0)
            break;
        const std::size_t offset = static_cast<std::size_t>(m_position - m_bufferStart);
        const std::size_t take = std::min(count - done, m_bufferLength - offset);
        std::memcpy(target + done, m_buffer.get() + offset, take);
        done += take;
        m_position += static_cast<long long>(take);
    }
    return static_cast<long>(done);
}

bool FileStream::WriteBytes(const char* data, std::size_t count)
{
    // What was read ahead may be overwritten now.
    m_bufferLength = 0;
    if (m_mode != StreamMode::kAppend && _lseeki64(m_descriptor, m_position, SEEK_SET) < 0)
        return false;
    std::size_t done = 0;
    while (done < count) {
        const unsigned chunk = static_cast<unsigned>(std::min<std::size_t>(count - done, 1u << 20));
        const int written = _write(m_descriptor, data + done, chunk);
        if (written <= 0)
            return false;
        done += static_cast<std::size_t>(written);
    }
    m_position = m_mode == StreamMode::kAppend ? Length() : m_position + static_cast<long long>(count);
    return true;
}

bool FileStream::AtTextEnd()
{
    const int c = PeekByte();
    return c < 0 || c == kTextEndMark;
}

std::intptr_t FileStream::SystemHandle() const { return _get_osfhandle(m_descriptor); }

bool FileStream::LockBytes(long long offset, long long count, bool lock)
{
    const long long saved = _telli64(m_descriptor);
    bool done = _lseeki64(m_descriptor, offset, SEEK_SET) >= 0;
    // The runtime locks at most a long's count of bytes at a time.
    while (done && count > 0) {
        const long part = static_cast<long>(std::min<long long>(count, 0x7FFFFFFF));
        done = _locking(m_descriptor, lock ? _LK_NBLCK : _LK_UNLCK, part) == 0;
        count -= part;
        if (done && count > 0)
            done = _lseeki64(m_descriptor, offset += part, SEEK_SET) >= 0;
    }
    (void)_lseeki64(m_descriptor, saved, SEEK_SET);
    return done;
}

} // namespace brannoc
