#pragma once
// The executor pushed below every activation. Its Step finishes at once; popping it ends the call (the
// call depth falls, and the run ends when the execution stack is then empty).
#include "code/Node.h"

namespace brannoc {

class CallEndMarker final : public Node {
public:
    static CallEndMarker& Instance() noexcept { return s_instance; }

    void Release() override;
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    CallEndMarker() = default;

    static CallEndMarker s_instance;
};

} // namespace brannoc
