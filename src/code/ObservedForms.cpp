#include "code/ObservedForms.h"

namespace brannoc {

namespace {

RegisterOp& MarkerOperation(RegisterProgram& program, int index)
{
    return program.ops[static_cast<std::size_t>(program.entries[static_cast<std::size_t>(index)])];
}

RegisterOp& EntryOperation(RegisterProgram& program, int index)
{
    return program.ops[static_cast<std::size_t>(program.entries[static_cast<std::size_t>(index)]) + 1];
}

// The ends of forms that go on to statement index, made to match its marker: while the marker goes
// straight to a form, each is a copy of it (which enters the statement and goes to the same form, or
// runs on into it when the form follows), one jump and one dispatch fewer per run; otherwise each is a
// jump to the marker, the one operation that break points and form changes update.
void MatchFormEndsToMarker(RegisterProgram& program, int index)
{
    const auto at = static_cast<std::size_t>(index);
    if (at >= program.formEndsInto.size())
        return;
    const RegisterOp& marker = MarkerOperation(program, index);
    for (const int end : program.formEndsInto[at]) {
        RegisterOp& op = program.ops[static_cast<std::size_t>(end)];
        op.b = 0;
        op.c = 0;
        if (marker.code != RegisterCode::kStatementJump) {
            op.code = RegisterCode::kJump;
            op.a = program.entries[at];
        } else if (marker.b == end + 1) {
            op.code = RegisterCode::kStatement;
            op.a = index;
        } else {
            op.code = RegisterCode::kStatementJump;
            op.a = index;
            op.b = marker.b;
        }
    }
}

} // namespace

void MatchMarkerToEntry(RegisterProgram& program, int index)
{
    RegisterOp& marker = MarkerOperation(program, index);
    if (marker.code == RegisterCode::kStatement || marker.code == RegisterCode::kStatementJump) {
        const RegisterOp& entry = EntryOperation(program, index);
        if (entry.code == RegisterCode::kJump) {
            marker.code = RegisterCode::kStatementJump;
            marker.b = entry.a;
        } else if (marker.code == RegisterCode::kStatementJump) {
            marker.code = RegisterCode::kStatement;
        }
    }
    MatchFormEndsToMarker(program, index);
}

void EnterFormAt(RegisterProgram& program, int index, int start)
{
    RegisterOp& entry = EntryOperation(program, index);
    entry.code = RegisterCode::kJump;
    entry.a = start;
    MatchMarkerToEntry(program, index);
}

void RecordObservedForm(RegisterProgram& program, int index, int start)
{
    const auto at = static_cast<std::size_t>(index);
    if (program.formStarts.size() <= at) {
        program.formStarts.resize(program.entries.size());
        program.formTries.resize(program.entries.size(), 0);
    }
    program.formStarts[at].push_back(start);
    program.formTries[at] = 0;
    // The form ends with the jump to the next statement's marker, its last operation.
    const auto end = static_cast<int>(program.ops.size()) - 1;
    const auto next = at + 1;
    const RegisterOp* last = end >= start ? &program.ops[static_cast<std::size_t>(end)] : nullptr;
    if (next < program.entries.size() && last && last->code == RegisterCode::kJump && last->a == program.entries[next]) {
        if (program.formEndsInto.size() < program.entries.size())
            program.formEndsInto.resize(program.entries.size());
        program.formEndsInto[next].push_back(end);
        MatchFormEndsToMarker(program, static_cast<int>(next));
    }
}

void ChooseNextForm(RegisterProgram& program, int index)
{
    const auto at = static_cast<std::size_t>(index);
    RegisterOp& entry = EntryOperation(program, index);
    const std::vector<int>* forms = at < program.formStarts.size() ? &program.formStarts[at] : nullptr;
    const std::size_t count = forms ? forms->size() : 0;
    const bool mayMakeNew = program.formsLeft[at] > 0;
    // The others are tried in turn (each until it too has given up often enough) before a new form is
    // made; with none left to make, the statement goes round the ones it has.
    if ((count >= 2 && static_cast<std::size_t>(program.formTries[at]) + 1 < count) || (count >= 1 && !mayMakeNew)) {
        std::size_t current = 0;
        while (current < count && (*forms)[current] != entry.a)
            ++current;
        const std::size_t next = current + 1 < count ? current + 1 : 0;
        if (program.formTries[at] < 255)
            ++program.formTries[at];
        EnterFormAt(program, index, (*forms)[next]);
        program.observed[at] = 1;
        return;
    }
    entry.code = mayMakeNew ? RegisterCode::kObserve : RegisterCode::kGeneral;
    entry.a = index;
    program.observed[at] = 0;
    MatchMarkerToEntry(program, index);
}

} // namespace brannoc
