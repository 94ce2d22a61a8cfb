// Jumps and branches: GoTo, Exit, conditional jumps, If blocks and Select Case.
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

bool JumpStatement::Execute()
{
    const RunContext context = Context();
    if (m_intoWith)
        return context.interpreter->SignalError(kErrorWrongWith);
    if (m_withRelease > 0)
        LeaveWithBlocks(context, m_withRelease);
    JumpTo(context, m_target);
    return true;
}

bool ExitProcedureStatement::Execute()
{
    Interpreter* interpreter = Interpreter::Current();
    Activation* activation = interpreter->CurrentActivation();
    activation->SetIndexes(m_exitIndex);
    activation->SetResumeIndex(Activation::kNoResume);
    interpreter->ClearErr();
    return true;
}

bool ConditionalJumpStatement::Execute()
{
    const RunContext context = Context();
    bool truth = false;
    if (m_typed && DirectFormsEnabled()) {
        if (!m_typed->EvaluateCondition(context, truth))
            return ExecuteFrom(0);
        if (truth == m_jumpWhen)
            JumpTo(context, m_target);
        return true;
    }
    return ExecuteOther(context);
}

bool ConditionalJumpStatement::ExecuteOther(const RunContext& context)
{
    bool truth = false;
    const FastExpression* fast = m_fast.Get(m_condition, context.procedure);
    if (const FastExpression* compiled = m_fast.Compiled())
        m_typed = compiled->Typed();
    if (fast && fast->EvaluateCondition(context, truth)) {
        if (truth == m_jumpWhen)
            JumpTo(context, m_target);
        return true;
    }
    return ExecuteFrom(0);
}

bool ConditionalJumpStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_condition, entry, answer))
        return answer;
    bool truth = false;
    if (!PopCondition(context, truth))
        return Fail(context, entry);
    if (truth == m_jumpWhen)
        JumpTo(context, m_target);
    return Finish(entry);
}

inline void BranchStatement::Enter(const RunContext& context, int part)
{
    if (part <= static_cast<int>(m_conditions.size())) {
        if (m_marks[static_cast<std::size_t>(part - 1)])
            SetMark(context, m_markSlot);
        JumpTo(context, m_targets[static_cast<std::size_t>(part - 1)]);
        return;
    }
    if (m_elseMarked)
        SetMark(context, m_markSlot);
    JumpTo(context, m_elseTarget);
}

namespace {

template <typename T>
bool Compares(OperationId op, T a, T b)
{
    switch (op) {
    case OperationId::kEqual: return a == b;
    case OperationId::kNotEqual: return a != b;
    case OperationId::kLess: return a < b;
    case OperationId::kLessEqual: return a <= b;
    case OperationId::kGreater: return a > b;
    default: return a >= b;
    }
}

// A numeric constant a Case item can test against without the operators: Integer, Long or Double.
bool CaseConstant(const ExprOp& op, const CompiledProcedure& procedure, VARIANT& value)
{
    if (op.code != ExprOpCode::kConstant)
        return false;
    value = procedure.ConstantAt(op.index).Raw();
    return value.vt == VT_I2 || value.vt == VT_I4 || value.vt == VT_R8;
}

// A string constant a Case item can compare a string selector with in place.
bool TextConstant(const ExprOp& op, const CompiledProcedure& procedure, std::wstring_view& text)
{
    if (op.code != ExprOpCode::kConstant)
        return false;
    const VARIANT& value = procedure.ConstantAt(op.index).Raw();
    return StoredText(value, text);
}

LONG WholeConstant(const VARIANT& value) { return value.vt == VT_I4 ? value.lVal : value.iVal; }
double RealConstant(const VARIANT& value) { return value.vt == VT_R8 ? value.dblVal : WholeConstant(value); }

} // namespace

bool BranchStatement::ReadCaseTests(const Expression& condition, const CompiledProcedure& procedure)
{
    const std::vector<ExprOp>& ops = condition.ops;
    const std::size_t first = m_caseTests.size();
    const auto isSelector = [&](std::size_t at) {
        return at < ops.size() && ops[at].code == ExprOpCode::kLoad && ops[at].scope == StorageScope::Local &&
               ops[at].index == m_selectorSlot;
    };
    const auto isBinary = [&](std::size_t at, OperationId op) {
        return at < ops.size() && ops[at].code == ExprOpCode::kBinary && ops[at].op == op;
    };
    std::size_t at = 0;
    int items = 0;
    // The items are all numbers or all strings (decided by the first).
    const bool text = ops.size() > 1 && ops[1].code == ExprOpCode::kConstant &&
                      procedure.ConstantAt(ops[1].index).Raw().vt == VT_BSTR;
    const auto constant = [&](const ExprOp& op, VARIANT& value, std::wstring_view& words) {
        return text ? TextConstant(op, procedure, words) : CaseConstant(op, procedure, value);
    };
    while (at < ops.size()) {
        // selector, constant, comparison: a value or an Is item; then, for a range, >= and the upper half.
        VARIANT low{};
        CaseTest test;
        if (!isSelector(at) || at + 2 >= ops.size() || !constant(ops[at + 1], low, test.lowText) ||
            ops[at + 2].code != ExprOpCode::kBinary || !IsComparison(ops[at + 2].op)) {
            m_caseTests.resize(first);
            return false;
        }
        test.op = ops[at + 2].op;
        test.text = text;
        if (!text) {
            test.low = WholeConstant(low);
            test.lowReal = RealConstant(low);
            test.whole = low.vt != VT_R8;
        }
        at += 3;
        VARIANT high{};
        if (test.op == OperationId::kGreaterEqual && isSelector(at) && at + 3 < ops.size() &&
            constant(ops[at + 1], high, test.highText) && isBinary(at + 2, OperationId::kLessEqual) &&
            isBinary(at + 3, OperationId::kAnd)) {
            test.range = true;
            if (!text) {
                test.high = WholeConstant(high);
                test.highReal = RealConstant(high);
                test.whole = test.whole && high.vt != VT_R8;
            }
            at += 4;
        }
        if (++items > 1) {
            if (!isBinary(at, OperationId::kOr)) {
                m_caseTests.resize(first);
                return false;
            }
            ++at;
        }
        m_caseTests.push_back(test);
    }
    return items > 0 && m_caseTests.size() <= 0xFFFF;
}

bool BranchStatement::MatchesCase(const DirectBranch& branch, bool isWhole, LONG whole, double real) const
{
    const CaseTest* test = m_caseTests.data() + branch.firstTest;
    const CaseTest* end = test + branch.testCount;
    for (; test != end; ++test) {
        bool holds = false;
        if (isWhole && test->whole) {
            holds = test->range ? test->low <= whole && whole <= test->high : Compares(test->op, whole, test->low);
        } else {
            const double value = isWhole ? static_cast<double>(whole) : real;
            holds = test->range ? test->lowReal <= value && value <= test->highReal
                                : Compares(test->op, value, test->lowReal);
        }
        if (holds)
            return true;
    }
    return false;
}

// In line: a Select over a string tries each Case line through it.
__attribute__((always_inline)) inline bool BranchStatement::MatchesText(const DirectBranch& branch,
                                                                        std::wstring_view selector) const
{
    const CaseTest* test = m_caseTests.data() + branch.firstTest;
    const CaseTest* end = test + branch.testCount;
    for (; test != end; ++test) {
        // The usual Case "text".
        if (!test->range && test->op == OperationId::kEqual) {
            if (SameText(selector, test->lowText))
                return true;
            continue;
        }
        const bool holds = test->range ? TextOrderHolds(OperationId::kGreaterEqual, selector, test->lowText) &&
                                             TextOrderHolds(OperationId::kLessEqual, selector, test->highText)
                                       : TextOrderHolds(test->op, selector, test->lowText);
        if (holds)
            return true;
    }
    return false;
}

void BranchStatement::PrepareDirect()
{
    m_direct = Direct::kNone;
    if (!m_owner)
        return;
    const FastExpression* selector = nullptr;
    if (m_selectorSlot >= 0) {
        (void)m_fastSelector.Get(m_selector, m_owner);
        selector = m_fastSelector.Compiled();
    }
    m_directBranches.assign(m_conditions.size(), DirectBranch{});
    m_textConditions.clear();
    m_textConditions.resize(m_conditions.size());
    bool allText = m_selectorSlot >= 0;
    for (std::size_t i = 0; i < m_conditions.size(); ++i) {
        DirectBranch& branch = m_directBranches[i];
        const std::size_t first = m_caseTests.size();
        if (m_selectorSlot >= 0 && ReadCaseTests(m_conditions[i], *m_owner)) {
            branch.firstTest = static_cast<std::uint16_t>(first);
            branch.testCount = static_cast<std::uint16_t>(m_caseTests.size() - first);
            branch.textTests = m_caseTests[first].text;
            allText = allText && branch.textTests;
            continue;
        }
        allText = false;
        (void)m_fastConditions[i].Get(m_conditions[i], m_owner);
        if (const FastExpression* fast = m_fastConditions[i].Compiled())
            branch.condition = fast->Typed();
        else if (m_textConditions[i].Compile(m_conditions[i], *m_owner))
            branch.text = &m_textConditions[i];
    }
    // A string selector read in place, compared with string items only.
    if (allText && !m_conditions.empty() && m_textSelector.Compile(m_selector.ops.data(), m_selector.ops.size(), *m_owner)) {
        m_direct = Direct::kTextCases;
        PrepareTextEquals();
        return;
    }
    if (m_selectorSlot >= 0 && !selector)
        return;
    bool typed = m_selectorSlot < 0;
    for (const DirectBranch& branch : m_directBranches)
        typed = typed && branch.condition != nullptr;
    m_direct = typed ? Direct::kConditions : PrepareWholeRanges() ? Direct::kWholeRanges : Direct::kReady;
}

bool BranchStatement::PrepareWholeRanges()
{
    const FastExpression* selector = m_fastSelector.Compiled();
    const TypedExpression* typed = selector ? selector->Typed() : nullptr;
    if (!typed || (typed->ResultKind() != VT_I2 && typed->ResultKind() != VT_I4))
        return false;
    std::vector<WholeRange> ranges;
    for (std::size_t i = 0; i < m_directBranches.size(); ++i) {
        const DirectBranch& branch = m_directBranches[i];
        if (branch.testCount == 0)
            return false;
        const int part = static_cast<int>(i) + 1;
        for (std::size_t t = branch.firstTest; t < std::size_t{branch.firstTest} + branch.testCount; ++t) {
            const CaseTest& test = m_caseTests[t];
            if (!test.whole)
                return false;
            const LONG c = test.low;
            // Before and after c, or nothing when c is the first or last whole number.
            const WholeRange before{LONG_MIN, c == LONG_MIN ? LONG_MIN : c - 1, c == LONG_MIN ? 0 : part};
            const WholeRange after{c == LONG_MAX ? LONG_MAX : c + 1, LONG_MAX, c == LONG_MAX ? 0 : part};
            if (test.range) {
                ranges.push_back({test.low, test.high, part});
                continue;
            }
            switch (test.op) {
            case OperationId::kEqual: ranges.push_back({c, c, part}); break;
            case OperationId::kLess: if (before.part) ranges.push_back(before); break;
            case OperationId::kLessEqual: ranges.push_back({LONG_MIN, c, part}); break;
            case OperationId::kGreater: if (after.part) ranges.push_back(after); break;
            case OperationId::kGreaterEqual: ranges.push_back({c, LONG_MAX, part}); break;
            default: // kNotEqual
                if (before.part)
                    ranges.push_back(before);
                if (after.part)
                    ranges.push_back(after);
                break;
            }
        }
    }
    m_wholeRanges = std::move(ranges);
    m_wholeSelector = typed;
    return true;
}

bool BranchStatement::ExecuteWholeRanges(const RunContext& context)
{
    LONG selector = 0;
    if (!m_wholeSelector->EvaluateWhole(context, selector))
        return ExecuteFrom(0);
    // Kept in its slot as the general code keeps it.
    VARIANT& kept = HiddenSlot(context, m_selectorSlot);
    if (!OwnsNothing(kept.vt))
        ClearSlot(kept);
    kept.vt = m_wholeSelector->ResultKind();
    if (kept.vt == VT_I4)
        kept.lVal = selector;
    else
        kept.iVal = static_cast<SHORT>(selector);
    int part = static_cast<int>(m_directBranches.size()) + 1;
    for (const WholeRange& range : m_wholeRanges) {
        if (range.low <= selector && selector <= range.high) {
            part = range.part;
            break;
        }
    }
    Enter(context, part);
    return true;
}

template <typename Test>
bool BranchStatement::TakeFirstTrue(const RunContext& context, Test test)
{
    const int count = static_cast<int>(m_directBranches.size());
    for (int part = 1; part <= count; ++part) {
        bool truth = false;
        if (!test(static_cast<std::size_t>(part - 1), truth))
            return ExecuteFrom(MakeState(part, 0));
        if (truth) {
            Enter(context, part);
            return true;
        }
    }
    Enter(context, count + 1);
    return true;
}

bool BranchStatement::ExecuteDirect(const RunContext& context)
{
    // The selector of Select Case is kept in its slot (the general code of a later condition reads it
    // there), and read as a number when it is one.
    bool numeric = false;
    bool isWhole = false;
    LONG whole = 0;
    double real = 0;
    if (m_selectorSlot >= 0) {
        VARIANT value;
        if (!m_fastSelector.Compiled()->Evaluate(context, value))
            return ExecuteFrom(0);
        VARIANT& kept = HiddenSlot(context, m_selectorSlot);
        if (!OwnsNothing(kept.vt))
            ClearSlot(kept);
        kept = value;
        switch (value.vt) {
        case VT_I2: numeric = isWhole = true; whole = value.iVal; break;
        case VT_I4: numeric = isWhole = true; whole = value.lVal; break;
        case VT_R8: numeric = true; real = value.dblVal; break;
        default: break;
        }
    }
    return TakeFirstTrue(context, [&](std::size_t index, bool& truth) {
        const DirectBranch& branch = m_directBranches[index];
        if (branch.testCount != 0 && numeric && !branch.textTests) {
            truth = MatchesCase(branch, isWhole, whole, real);
            return true;
        }
        if (branch.condition)
            return branch.condition->EvaluateCondition(context, truth);
        if (branch.text)
            return branch.text->EvaluateCondition(context, truth);
        const FastExpression* fast = m_fastConditions[index].Get(m_conditions[index], context.procedure);
        return fast && fast->EvaluateCondition(context, truth);
    });
}

void BranchStatement::PrepareTextEquals()
{
    m_textEquals.clear();
    std::vector<TextEqual> items;
    for (std::size_t i = 0; i < m_directBranches.size(); ++i) {
        const DirectBranch& branch = m_directBranches[i];
        for (std::size_t t = branch.firstTest; t < std::size_t{branch.firstTest} + branch.testCount; ++t) {
            const CaseTest& test = m_caseTests[t];
            if (test.range || test.op != OperationId::kEqual)
                return;
            items.push_back(TextEqual{static_cast<UINT>(test.lowText.size()),
                                      test.lowText.empty() ? L'\0' : test.lowText[0], test.lowText.data(),
                                      static_cast<int>(i) + 1});
        }
    }
    m_textEquals = std::move(items);
}

int BranchStatement::TextPart(std::wstring_view selector) const
{
    const int count = static_cast<int>(m_directBranches.size());
    if (!m_textEquals.empty()) {
        const auto length = static_cast<UINT>(selector.size());
        for (const TextEqual& item : m_textEquals) {
            if (item.length == length &&
                (length == 0 ||
                 (item.first == selector[0] && std::wmemcmp(item.text, selector.data(), length) == 0)))
                return item.part;
        }
        return count + 1;
    }
    for (int part = 1; part <= count; ++part) {
        if (MatchesText(m_directBranches[static_cast<std::size_t>(part - 1)], selector))
            return part;
    }
    return count + 1;
}

int BranchStatement::TextCasePart(const RunContext& context) const
{
    std::wstring_view selector;
    if (!m_textSelector.Read(context, selector))
        return 0;
    return TextPart(selector);
}

int BranchStatement::PartOfText(std::wstring_view selector) const { return TextPart(selector); }

bool BranchStatement::ExecuteTextCases(const RunContext& context)
{
    const int part = TextCasePart(context);
    if (part == 0)
        return ExecuteFrom(0);
    Enter(context, part);
    return true;
}

bool BranchStatement::ExecuteConditions(const RunContext& context)
{
    const DirectBranch* branches = m_directBranches.data();
    return TakeFirstTrue(context, [branches, &context](std::size_t index, bool& truth) {
        return branches[index].condition->EvaluateCondition(context, truth);
    });
}

bool BranchStatement::Execute()
{
    if (m_direct == Direct::kUntried)
        PrepareDirect();
    if (DirectFormsEnabled()) {
        switch (m_direct) {
        case Direct::kConditions: return ExecuteConditions(Context());
        case Direct::kWholeRanges: return ExecuteWholeRanges(Context());
        case Direct::kReady: return ExecuteDirect(Context());
        case Direct::kTextCases: return ExecuteTextCases(Context());
        default: break;
        }
    }
    // Without a direct form (or with the direct forms off) the general code runs from the start.
    return ExecuteFrom(0);
}

bool BranchStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    // Part 0 is the selector of Select Case; part i + 1 the condition of branch i.
    int part = PartOf(entry.state);
    int pc = PositionOf(entry.state);
    if (part == 0) {
        if (m_selectorSlot >= 0) {
            switch (RunExpression(context, m_selector, pc)) {
            case EvalStatus::kYield: entry.state = MakeState(0, pc); return false;
            case EvalStatus::kFailed: return Fail(context, entry);
            case EvalStatus::kDone: break;
            }
            ValueStack& values = context.interpreter->Values();
            Variant kept;
            kept.Attach(HiddenSlot(context, m_selectorSlot));
            kept = std::move(values.Top());
            kept.Detach(HiddenSlot(context, m_selectorSlot));
            values.Pop();
        }
        part = 1;
        pc = 0;
    }
    for (; part <= static_cast<int>(m_conditions.size()); ++part, pc = 0) {
        switch (RunExpression(context, m_conditions[static_cast<std::size_t>(part - 1)], pc)) {
        case EvalStatus::kYield: entry.state = MakeState(part, pc); return false;
        case EvalStatus::kFailed: return Fail(context, entry);
        case EvalStatus::kDone: break;
        }
        bool truth = false;
        if (!PopCondition(context, truth))
            return Fail(context, entry);
        if (truth) {
            Enter(context, part);
            return Finish(entry);
        }
    }
    Enter(context, static_cast<int>(m_conditions.size()) + 1);
    return Finish(entry);
}

bool CaseLineStatement::Step(ExecEntry& entry)
{
    if (entry.state > 0)
        return m_body->RunFrom(entry, entry.state - 1, 1);
    const RunContext context = Context();
    VARIANT& mark = HiddenSlot(context, m_markSlot);
    const bool entering = mark.vt == VT_BOOL && mark.boolVal != VARIANT_FALSE;
    mark.boolVal = VARIANT_FALSE;
    if (!entering) {
        JumpTo(context, m_target);
        return Finish(entry);
    }
    return m_body->RunFrom(entry, 0, 1);
}

} // namespace brannoc
