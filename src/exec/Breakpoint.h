#pragma once
// A break point: it stands in a procedure's statement vector in place of the statement of one source
// line. Executing it stops the run before the statement, unless the run resumes exactly there; the
// statement itself runs when the run goes on. Everything else sees the statement it replaces (listing).
#include "code/Node.h"

namespace brannoc {

class ProcedureCode;

class Breakpoint final : public Node {
public:
    // Puts the break point in place of statement index of procedure (source line `line`); the
    // statement goes back when the break point is destroyed.
    Breakpoint(ProcedureCode& procedure, int index, int line);
    ~Breakpoint() override;

    // Owned by its module's break point list, never by the execution stack.
    void Release() override {}
    [[nodiscard]] bool Execute() override;
    void Print(std::string& out) const override;
    int KeywordToken() const override;

    ProcedureCode& Procedure() const noexcept { return m_procedure; }
    int Index() const noexcept { return m_index; }
    int Line() const noexcept { return m_line; }

private:
    ProcedureCode& m_procedure;
    Node* m_statement = nullptr;
    int m_index = 0;
    int m_line = 0;
};

} // namespace brannoc
