#pragma once
// The undo and redo history of a document: each record holds the old text of the lines a change
// replaced, enough to replace the changed lines back. A list keeps at most 20 records; adding a 21st
// drops the oldest.
#include <deque>
#include <string>

namespace brannoc::ide {

struct UndoRecord {
    std::string replacedText;  // the old text of the affected lines, joined with CR LF
    int firstLine = 0;         // first affected line
    int lastLine = 0;          // last affected line after the change
    int lineCountAfter = 0;    // the document's line count after the change
    int caretLine = 0;         // caret before the change
    int caretColumn = 0;
    bool modifiedBefore = false;
    bool groupedWithPrevious = false;
};

class UndoList final {
public:
    static constexpr size_t kLimit = 20;

    void Push(UndoRecord record);
    // Removes and answers the newest record; the list must not be empty.
    UndoRecord Pop();
    const UndoRecord* Newest() const { return m_records.empty() ? nullptr : &m_records.back(); }
    bool Empty() const { return m_records.empty(); }
    size_t Size() const { return m_records.size(); }
    void Clear() { m_records.clear(); }

private:
    std::deque<UndoRecord> m_records; // oldest first
};

} // namespace brannoc::ide
