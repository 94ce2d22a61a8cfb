#pragma once
// The statements of file streams and files: Open, Close, Print #, Write #, Input #, Line Input #, Get,
// Put, Seek, Lock, Unlock and Name. Each runs its argument code, which leaves its values on the value
// stack, and then does its work on them.
#include "code/Statements.h"
#include "library/FileStream.h"

#include <vector>

namespace brannoc {

class FileStatement : public Statement {
public:
    FileStatement(Expression code, int count) : m_code(std::move(code)), m_count(count) {}
    [[nodiscard]] bool Step(ExecEntry& entry) override;

protected:
    // The work on the m_count values the code left (args[0] first); false after raising an error.
    [[nodiscard]] virtual bool Perform(const RunContext& context, Variant* args) = 0;

private:
    Expression m_code;
    int m_count;
};

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
    StreamInputStatement(Expression code, std::vector<VariableRef> targets)
        : FileStatement(std::move(code), 1), m_targets(std::move(targets))
    {
    }

private:
    bool Perform(const RunContext& context, Variant* args) override;
    std::vector<VariableRef> m_targets;
};

// Line Input # n, variable.
class LineInputStatement final : public FileStatement {
public:
    LineInputStatement(Expression code, VariableRef target) : FileStatement(std::move(code), 1), m_target(target) {}

private:
    bool Perform(const RunContext& context, Variant* args) override;
    VariableRef m_target;
};

// Get and Put [#]n, [position], variable: values number [, position].
class TransferStatement final : public FileStatement {
public:
    TransferStatement(Expression code, int count, VariableRef target, bool put)
        : FileStatement(std::move(code), count), m_hasPosition(count == 2), m_target(target), m_put(put)
    {
    }

private:
    bool Perform(const RunContext& context, Variant* args) override;
    bool m_hasPosition;
    VariableRef m_target;
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
