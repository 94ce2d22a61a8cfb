#include "code/Node.h"

#include "exec/Interpreter.h"

namespace brannoc {

void Node::Release() { delete this; }

bool Node::Execute()
{
    ExecEntry entry{this, 0};
    if (Step(entry))
        return true;
    Interpreter* interpreter = Interpreter::Current();
    if (!interpreter)
        return false;
    // A failed push has already raised out of memory; either way this statement yields.
    (void)interpreter->PushPending(entry);
    return false;
}

bool Node::Step(ExecEntry& entry)
{
    entry.state = ExecEntry::kFinished;
    return true;
}

void Node::Print(std::string&) const {}

} // namespace brannoc
