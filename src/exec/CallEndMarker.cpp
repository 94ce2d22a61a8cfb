#include "exec/CallEndMarker.h"

#include "exec/Interpreter.h"

namespace brannoc {

CallEndMarker CallEndMarker::s_instance;

void CallEndMarker::Release()
{
    if (Interpreter* interpreter = Interpreter::Current())
        interpreter->EndCall();
}

bool CallEndMarker::Step(ExecEntry& entry)
{
    entry.state = ExecEntry::kFinished;
    return true;
}

} // namespace brannoc
