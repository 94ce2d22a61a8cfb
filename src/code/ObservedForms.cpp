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

// The operation before statement index's form that enters the statement in the marker's place, made a
// jump to the marker again (the marker is the one place that break points and form changes update).
void RestoreJumpToMarker(RegisterProgram& program, int index)
{
    const auto at = static_cast<std::size_t>(index);
    if (at >= program.markerBeforeForm.size() || program.markerBeforeForm[at] < 0)
        return;
    RegisterOp& before = program.ops[static_cast<std::size_t>(program.markerBeforeForm[at])];
    before.code = RegisterCode::kJump;
    before.a = program.entries[at];
    program.markerBeforeForm[at] = -1;
}

// A marker that goes straight to a form whose preceding operation is a jump to this same marker: that
// jump (the end of the form made just before, for the statement before) becomes a copy of the marker,
// which enters the statement and runs on into the form, one jump and one dispatch fewer per run.
void EnterFormFromJumpBefore(RegisterProgram& program, int index, int start)
{
    const auto at = static_cast<std::size_t>(index);
    if (start < 1)
        return;
    RegisterOp& before = program.ops[static_cast<std::size_t>(start - 1)];
    if (before.code != RegisterCode::kJump || before.a != program.entries[at])
        return;
    if (program.markerBeforeForm.size() < program.entries.size())
        program.markerBeforeForm.resize(program.entries.size(), -1);
    before.code = RegisterCode::kStatement;
    before.a = index;
    before.b = 0;
    before.c = 0;
    program.markerBeforeForm[at] = start - 1;
}

} // namespace

void MatchMarkerToEntry(RegisterProgram& program, int index)
{
    RestoreJumpToMarker(program, index);
    RegisterOp& marker = MarkerOperation(program, index);
    if (marker.code != RegisterCode::kStatement && marker.code != RegisterCode::kStatementJump)
        return;
    const RegisterOp& entry = EntryOperation(program, index);
    if (entry.code == RegisterCode::kJump) {
        marker.code = RegisterCode::kStatementJump;
        marker.b = entry.a;
        EnterFormFromJumpBefore(program, index, entry.a);
    } else if (marker.code == RegisterCode::kStatementJump) {
        marker.code = RegisterCode::kStatement;
    }
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
