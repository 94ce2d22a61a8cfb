#pragma once
// Common base of every compiled object (statements, expression nodes, procedures, activations) and the
// entry of the interpreter's execution stack that pairs an executor with its resumable state.
#include <cstdint>
#include <string>

namespace brannoc {

class Node;

// One entry of the execution or pending stack. The state belongs to the executor; -1 means finished.
struct ExecEntry {
    static constexpr std::int32_t kFinished = -1;

    Node* executor = nullptr;
    std::int32_t state = 0;
};

// The virtual operations of every compiled object, in their fixed order: destroy (the virtual
// destructor, whose deleting form frees the memory), Release, Execute, Step, the front end's services,
// Print, more front-end services, the statement kind's keyword token. Derived families add their own
// operations after these.
class Node {
public:
    Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    // 0: destroy.
    virtual ~Node() = default;

    // 1: called when an entry holding this executor is popped off the execution stack. The default
    // destroys the object; owned and singleton executors override it.
    virtual void Release();

    // 2: runs to completion when it can. True: continue with the next statement. False: yield, because
    // work was scheduled or an error or halt is pending. The default runs Step once with a fresh entry
    // (state 0); when that does not finish, (this, state) goes on the pending stack.
    [[nodiscard]] virtual bool Execute();

    // 3: resumable execution; may change entry.state; true when this executor is finished.
    [[nodiscard]] virtual bool Step(ExecEntry& entry);

    // 11: appends the listing text of the object (what the debugger, traces and error reports show).
    virtual void Print(std::string& out) const;

    // 14: keyword token of the statement kind; 0 for objects that are not statement kinds.
    virtual int KeywordToken() const { return 0; }
};

} // namespace brannoc
