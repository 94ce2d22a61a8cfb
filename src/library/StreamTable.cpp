#include "library/StreamTable.h"

#include "exec/Interpreter.h"
#include "values/ValueError.h"

namespace brannoc {

bool StreamTable::Open(long number, const std::wstring& path, StreamMode mode, int access, StreamSharing sharing,
                       long recordLength)
{
    if (recordLength < 1 || recordLength > kMaxRecordLength)
        return RaiseValueError(kErrorBadRecordLength);
    if (number < 1 || number > kMaxNumber)
        return RaiseValueError(kErrorBadStreamNumber);
    auto& slot = m_streams[static_cast<std::size_t>(number)];
    if (slot)
        return RaiseValueError(kErrorStreamAlreadyOpen);
    slot = FileStream::Open(path, mode, access, sharing, recordLength);
    return slot != nullptr || RaiseValueError(kErrorCouldNotOpenFile);
}

FileStream* StreamTable::Find(long number) const
{
    if (number >= 1 && number <= kMaxNumber) {
        if (FileStream* stream = m_streams[static_cast<std::size_t>(number)].get())
            return stream;
    }
    (void)RaiseValueError(kErrorFileNotOpen);
    return nullptr;
}

bool StreamTable::Close(long number)
{
    if (!Find(number))
        return false;
    m_streams[static_cast<std::size_t>(number)].reset();
    return true;
}

void StreamTable::CloseAll()
{
    for (auto& stream : m_streams)
        stream.reset();
}

int StreamTable::FreeNumber() const
{
    for (int number = kFirstFreeFileNumber; number <= kMaxNumber; ++number) {
        if (!m_streams[static_cast<std::size_t>(number)])
            return number;
    }
    return 0;
}

int StreamTable::OpenCount() const
{
    int count = 0;
    for (const auto& stream : m_streams)
        count += stream ? 1 : 0;
    return count;
}

StreamTable* CurrentStreams()
{
    Interpreter* interpreter = Interpreter::Current();
    return interpreter ? interpreter->Host().Streams() : nullptr;
}

FileStream* CurrentStream(long number)
{
    if (StreamTable* table = CurrentStreams())
        return table->Find(number);
    (void)RaiseValueError(kErrorFileNotOpen);
    return nullptr;
}

} // namespace brannoc
