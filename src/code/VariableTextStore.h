#pragma once
// s = names(i + 1), t = people(k - 1).City: a string read in place stored into a String or Variant
// variable by the register form, which computed the text's index with its own operations. The statement's
// object keeps its own form for the times it runs itself.
#include "code/TextOperand.h"
#include "values/StringCapacity.h"

namespace brannoc {

// Stores text into the storage of variable `target` as the assignment does when the variable holds a
// String, or a Variant holding a string or a value owning nothing. False when it gave up with nothing
// changed (the variable holds something else); true otherwise, also after raising (out of memory: the
// halt bit is then set).
[[nodiscard, gnu::always_inline]] inline bool StoreTextInVariable(const RunContext& context, const VariableRef& target,
                                                                  std::wstring_view text)
{
    VARIANT* storage = StorageOf(context, target.scope, target.index, target.module);
    bool stored = false;
    if (!storage || !AssignTextInLine(*storage, text, stored))
        return true; // an error was raised: the statement answers with the halt bit set
    return stored;
}

class VariableTextStore final {
public:
    explicit VariableTextStore(const VariableRef& target) : m_target(target) {}
    TextOperand& Value() noexcept { return m_value; }
    // Runs the store with StoreTextInVariable's answers; false as well when the text gave up.
    [[nodiscard]] bool Run(const RunContext& context) const;

private:
    VariableRef m_target;
    TextOperand m_value;
};

} // namespace brannoc
