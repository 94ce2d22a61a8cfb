#pragma once
// The statements of file streams and files: Open, Close, Print #, Write #, Input #, Line Input #, Get,
// Put, Seek, Lock, Unlock and Name. Each runs its argument code, which leaves its values on the value
// stack, and then does its work on them.
#include "code/Statements.h"
#include "library/FileStream.h"

#include <vector>

namespace brannoc {

// What Input #, Line Input #, Get and Put read into or write from: a variable, or the hidden slot that
// holds a copy of an array element or record field while the statement runs (its reference is among
// the statement's values, and the statement's write-back code returns it to its place), or, for Get and
// Put, a record element or field referred to where it lives (its reference is the last value).
struct FileTarget {
    VariableRef variable;
    bool throughSlot = false;
    bool recordInPlace = false;
};

class FileStatement : public Statement {
public:
    FileStatement(Expression code, int count) : m_code(std::move(code)), m_count(count) {}
    FileStatement(Expression code, Expression writeBack, int count)
        : m_code(std::move(code)), m_writeBack(std::move(writeBack)), m_count(count)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;

protected:
    // The work on the m_count values the code left (args[0] first); false after raising an error.
    [[nodiscard]] virtual bool Perform(const RunContext& context, Variant* args) = 0;

private:
    // Returns the elements and fields read into hidden slots to their places, also after a failing
    // statement (a slot not filled holds the value copied from its place). False after raising.
    [[nodiscard]] bool WriteBack(const RunContext& context);
    Expression m_code;
    Expression m_writeBack;
    int m_count;
};

// The number of values the code of targets leaves: one reference for each element or field.
inline int SlotCount(const std::vector<FileTarget>& targets)
{
    int count = 0;
    for (const FileTarget& target : targets)
        count += target.throughSlot || target.recordInPlace ? 1 : 0;
    return count;
}

// Open name For mode [Access access] [lock] As [#]n [Len = length]: values name, number [, length].
class OpenStatement final : public FileStatement {
public:
    OpenStatement(Expression code, int count, StreamMode mode, int access, StreamSharing sharing)
        : FileStatement(std::move(code), count), m_mode(mode), m_access(access), m_sharing(sharing),
          m_hasLength(count == 3)
    {
    }

private:
    bool Perform(const RunContext& context, Variant* args) override;
    StreamMode m_mode;
    int m_access;
    StreamSharing m_sharing;
    bool m_hasLength;
};

// Close [[#]n, ...]: without numbers every stream closes (as Reset).
class CloseStatement final : public FileStatement {
public:
    CloseStatement(Expression code, int count) : FileStatement(std::move(code), count), m_count(count) {}

private:
    bool Perform(const RunContext& context, Variant* args) override;
    int m_count;
};

// Print # and Write #: values number, items. The text of the whole statement is written at once.
class StreamPrintStatement final : public FileStatement {
public:
    StreamPrintStatement(Expression code, int count, bool newLine, bool writeForm)
        : FileStatement(std::move(code), count), m_items(count - 1), m_newLine(newLine), m_writeForm(writeForm)
    {
    }

private:
    bool Perform(const RunContext& context, Variant* args) override;
    int m_items;
    bool m_newLine;
    bool m_writeForm;
};

// Input # n, variables: one field for each variable.
class StreamInputStatement final : public FileStatement {
public:
    StreamInputStatement(Expression code, Expression writeBack, std::vector<FileTarget> targets)
        : FileStatement(std::move(code), std::move(writeBack), 1 + SlotCount(targets)), m_targets(std::move(targets))
    {
    }

private:
    bool Perform(const RunContext& context, Variant* args) override;
    std::vector<FileTarget> m_targets;
};

// Line Input # n, variable.
class LineInputStatement final : public FileStatement {
public:
    LineInputStatement(Expression code, Expression writeBack, FileTarget target)
        : FileStatement(std::move(code), std::move(writeBack), target.throughSlot ? 2 : 1), m_target(target)
    {
    }

private:
    bool Perform(const RunContext& context, Variant* args) override;
    FileTarget m_target;
};

// Get and Put [#]n, [position], variable: values number [, position].
class TransferStatement final : public FileStatement {
public:
    TransferStatement(Expression code, Expression writeBack, int count, FileTarget target, bool put)
        : FileStatement(std::move(code), std::move(writeBack), count + (target.throughSlot || target.recordInPlace ? 1 : 0)),
          m_hasPosition(count == 2), m_target(target), m_put(put)
    {
    }

private:
    bool Perform(const RunContext& context, Variant* args) override;
    bool m_hasPosition;
    FileTarget m_target;
    bool m_put;
};

// Seek [#]n, position.
class SeekStatement final : public FileStatement {
public:
    explicit SeekStatement(Expression code) : FileStatement(std::move(code), 2) {}

private:
    bool Perform(const RunContext& context, Variant* args) override;
};

// Lock and Unlock [#]n [, from [To to]]: values number [, from [, to]].
class LockStatement final : public FileStatement {
public:
    LockStatement(Expression code, int count, bool unlock)
        : FileStatement(std::move(code), count), m_count(count), m_unlock(unlock)
    {
    }

private:
    bool Perform(const RunContext& context, Variant* args) override;
    int m_count;
    bool m_unlock;
};

// Name old As new: renames a file or folder.
class NameStatement final : public FileStatement {
public:
    explicit NameStatement(Expression code) : FileStatement(std::move(code), 2) {}

private:
    bool Perform(const RunContext& context, Variant* args) override;
};

// Moves a stream to a 1-based position as Seek does (records for Random streams); a position below 1
// is ignored.
void SeekStream(FileStream& stream, long position);

} // namespace brannoc
