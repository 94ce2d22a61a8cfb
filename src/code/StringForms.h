#pragma once
// Direct forms of the string work that loops do most: Mid over a string variable read in place (the
// part of the stored string, no new string made), appended to a string variable or compared with a
// string constant. Like the numeric direct forms they either do exactly what the general code does or
// give up without any effect, and the statement then runs its general code (which computes or raises).
#include "code/TypedExpression.h"

#include <string_view>

namespace brannoc {

// Compiles the whole typed form of an argument's or index's code (whose leading typed-value op, when
// there is one, only names the same form; a variable handed over by reference is read as its value).
// False when the code has none.
bool CompileWholeForm(const Expression& code, const CompiledProcedure& procedure, TypedExpression& form);

// Mid(text, start, length) where text is a String variable (or a Variant holding a string) and start and
// length have whole typed forms.
class SliceForm final {
public:
    // Compiles the built-in call `call` of procedure when it is such a Mid; false otherwise.
    bool Compile(int call, const CompiledProcedure& procedure);
    bool IsReady() const noexcept { return m_ready; }
    // The part Mid gives; false when it gave up: no string is stored, the start is below 1, the length
    // is negative, or a typed form declined.
    [[nodiscard]] bool Evaluate(const RunContext& context, std::wstring_view& part) const;

private:
    StorageScope m_scope = StorageScope::Local;
    int m_index = 0;
    const Module* m_module = nullptr;
    TypedExpression m_start;
    TypedExpression m_length;
    bool m_ready = false;
};

// Appends a part to the string that storage holds (the variable's string grows in place as & does);
// false, with nothing changed, when storage holds no string. `appended` is false after raising.
[[nodiscard]] bool AppendPartToStorage(VARIANT& storage, std::wstring_view part, bool& appended);

} // namespace brannoc
