#include "exec/Breakpoint.h"

#include "exec/Interpreter.h"
#include "exec/ProcedureCode.h"

namespace brannoc {

Breakpoint::Breakpoint(ProcedureCode& procedure, int index, int line)
    : m_procedure(procedure), m_index(index), m_line(line)
{
    m_statement = procedure.ReplaceStatement(index, this);
}

Breakpoint::~Breakpoint() { (void)m_procedure.ReplaceStatement(m_index, m_statement); }

bool Breakpoint::Execute()
{
    Interpreter* interpreter = Interpreter::Current();
    if (interpreter && interpreter->BreakpointStops()) {
        // The statement has not run: the activation holds before it, and it runs when the run goes on
        // (the statement at which a run resumes is not stopped at again).
        if (Activation* current = interpreter->CurrentActivation())
            current->HoldAt(current->CurrentIndex());
        interpreter->BreakpointReached();
        return false;
    }
    return m_statement->Execute();
}

void Breakpoint::Print(std::string& out) const { m_statement->Print(out); }

int Breakpoint::KeywordToken() const { return m_statement->KeywordToken(); }

} // namespace brannoc
