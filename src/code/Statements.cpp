#include "code/Statements.h"
#include "code/StatementSupport.h"
#include "automation/ObjectCreation.h"

#include "code/MemberCall.h"
#include "code/NumericKinds.h"
#include "code/ObjectStatements.h"
#include "exec/Activation.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "values/ArrayStorage.h"
#include "values/Conversion.h"
#include "values/StringCapacity.h"
#include "values/TextForm.h"
#include "values/ValueCell.h"

#include <climits>
#include <cstring>

namespace brannoc {

using namespace statement_support;

bool EvaluateStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_code, entry, answer))
        return answer;
    context.interpreter->Values().CutBack(context.activation->StatementBase());
    return Finish(entry);
}

bool DebugPrintStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_items, entry, answer))
        return answer;
    ValueStack& values = context.interpreter->Values();
    // One buffer for every Debug.Print: output text is built without a fresh allocation each time.
    static std::wstring s_text;
    s_text.clear();
    const std::size_t first = values.Size() - static_cast<std::size_t>(m_count);
    for (std::size_t i = first; i < values.Size(); ++i) {
        if (!WriteDebug(s_text, values.At(i)))
            return Fail(context, entry);
    }
    values.CutBack(first);
    if (m_newLine)
        s_text += L"\r\n";
    context.interpreter->Host().DebugPrint(s_text);
    return Finish(entry);
}

bool KeepValueStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_value, entry, answer))
        return answer;
    ValueStack& values = context.interpreter->Values();
    Variant kept;
    kept.Attach(HiddenSlot(context, m_slot));
    kept = std::move(values.Top());
    kept.Detach(HiddenSlot(context, m_slot));
    values.Pop();
    return Finish(entry);
}

bool StatementList::Step(ExecEntry& entry)
{
    int start = entry.state;
    if (m_lineLevel && start == 0)
        start = Interpreter::Current()->CurrentActivation()->TakeEntryPosition();
    return RunFrom(entry, start, 0);
}

bool StatementList::RunFrom(ExecEntry& entry, int start, int stateBase)
{
    Interpreter& interpreter = *Interpreter::Current();
    Activation* activation = interpreter.CurrentActivation();
    const int current = activation->CurrentIndex();
    const int next = activation->NextIndex();
    const int count = static_cast<int>(m_statements.size());
    for (int i = start; i < count; ++i) {
        if (m_lineLevel)
            activation->SetPositionAfter(current, i + 1 < count ? i + 1 : 0);
        const std::size_t pending = interpreter.PendingDepth();
        if (!m_statements[static_cast<std::size_t>(i)]->Execute()) {
            // A failed statement ends the list. A call that stopped at an error inside the callee waits on
            // the pending stack, and so does the list: the callee's own handler may trap the error, and
            // the line then goes on after the call.
            if (HaltFlags::MustStop() && interpreter.PendingDepth() <= pending)
                return Finish(entry);
            // The statement scheduled work; this list resumes after it.
            entry.state = stateBase + i + 1;
            return false;
        }
        // A jump (GoTo, Exit, a loop inside the line) or a pending error or action ends the list; a
        // jump always changes the current or the next index.
        if (activation->NextIndex() != next || activation->CurrentIndex() != current || HaltFlags::Any())
            break;
    }
    return Finish(entry);
}

bool SingleLineIfStatement::RunPart(ExecEntry& entry, bool truth)
{
    if (truth)
        return m_then->RunFrom(entry, 0, MakeState(1, 0));
    if (m_else)
        return m_else->RunFrom(entry, 0, MakeState(2, 0));
    return Finish(entry);
}

bool SingleLineIfStatement::Execute()
{
    const RunContext context = Context();
    bool truth = false;
    if (const FastExpression* fast = m_fast.Get(m_condition, context.procedure);
        fast && fast->EvaluateCondition(context, truth)) {
        ExecEntry entry{this, 0};
        return FinishOrWait(entry, RunPart(entry, truth));
    }
    if (m_direct == Direct::kUntried)
        m_direct = m_owner && !m_fast.Compiled() && m_text.Compile(m_condition, *m_owner) ? Direct::kReady : Direct::kNone;
    if (m_direct == Direct::kReady && DirectFormsEnabled() && m_text.EvaluateCondition(context, truth)) {
        ExecEntry entry{this, 0};
        return FinishOrWait(entry, RunPart(entry, truth));
    }
    return ExecuteFrom(0);
}

bool SingleLineIfStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    // Part 0: the condition; part 1: the Then list from a position; part 2: the Else list.
    const int part = PartOf(entry.state);
    if (part == 1)
        return m_then->RunFrom(entry, PositionOf(entry.state), MakeState(1, 0));
    if (part == 2)
        return m_else->RunFrom(entry, PositionOf(entry.state), MakeState(2, 0));
    int pc = PositionOf(entry.state);
    switch (RunExpression(context, m_condition, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    bool truth = false;
    if (!PopCondition(context, truth))
        return Fail(context, entry);
    return RunPart(entry, truth);
}

bool EndStatement::Execute()
{
    (void)Interpreter::Current()->RequestAction(m_action, 0);
    return true;
}

} // namespace brannoc
