#include "ide/UndoList.h"

namespace brannoc::ide {

void UndoList::Push(UndoRecord record)
{
    if (m_records.size() >= kLimit)
        m_records.pop_front();
    m_records.push_back(std::move(record));
}

UndoRecord UndoList::Pop()
{
    UndoRecord record = std::move(m_records.back());
    m_records.pop_back();
    return record;
}

} // namespace brannoc::ide
