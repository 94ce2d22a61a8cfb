#include "host/HostSubCall.h"

#include "code/ProcedureBody.h"
#include "exec/ErrorMessages.h"
#include "exec/ProcedureCode.h"
#include "frontend/Symbols.h"
#include "host/AnsiText.h"
#include "host/EngineContext.h"
#include "host/HostArgument.h"
#include "values/Conversion.h"
#include "values/Variant.h"

#include <cstring>
#include <vector>

namespace brannoc {
namespace {

void ReportHostCallError(EngineContext& context, long number, const std::string& name)
{
    ErrorLocation& error = context.ErrorReport();
    error.Clear();
    error.number = number;
    error.description = WithArgument(MessageFor(number), WideFromAnsi(name));
    error.macroName = WideFromAnsi(context.Modules().RunningName());
    context.TraceErrorFields();
    context.SendNotification(EngineContext::kNotifyError);
}

} // namespace

bool CallSubForHost(EngineContext& context, const std::string& name, VARIANT* const* arguments, int count)
{
    Interpreter& machine = context.Machine();
    if (machine.ExecutionMarker() != 0 || context.IsBusy())
        return false;
    Procedure* procedure = nullptr;
    ModuleInstance* instance = nullptr;
    if (!context.Modules().FindHostSub(name, procedure, instance)) {
        ReportHostCallError(context, kErrorSubOrFunctionMissing, name);
        return false;
    }
    const auto& parameters = procedure->parameters;
    const bool paramArray = !parameters.empty() && parameters.back().paramArray;
    const std::size_t fixed = paramArray ? parameters.size() - 1 : parameters.size();
    if (!paramArray && static_cast<std::size_t>(count) > fixed) {
        ReportHostCallError(context, kErrorWrongNumberOfParameters, name);
        return false;
    }
    for (std::size_t i = static_cast<std::size_t>(count); i < fixed; ++i) {
        if (!parameters[i].optional) {
            ReportHostCallError(context, kErrorWrongNumberOfParameters, name);
            return false;
        }
    }
    std::vector<std::unique_ptr<HostArgument>> held;
    for (int i = 0; i < count; ++i) {
        held.push_back(std::make_unique<HostArgument>(arguments[i]));
        if (!held.back()->Usable())
            return false;
    }
    auto push = [&](ValueStack& values) {
        Variant* result = values.Push();
        if (!result)
            return false;
        result->SetError(kResultSlotStatus);
        for (std::size_t i = 0; i < fixed; ++i) {
            const bool given = i < held.size();
            if (given ? !held[i]->Push(values, &parameters[i]) : !HostArgument(nullptr).Push(values, &parameters[i]))
                return false;
        }
        if (!paramArray)
            return true;
        for (std::size_t i = fixed; i < held.size(); ++i) {
            if (!held[i]->Push(values, nullptr))
                return false;
        }
        return PackValues(values, static_cast<int>(held.size() > fixed ? held.size() - fixed : 0));
    };
    const unsigned long errorsBefore = context.UntrappedErrorCount();
    const bool finished = context.Modules().RunNested(*procedure->code, *instance, push);
    for (const auto& argument : held)
        argument->WriteBack();
    return finished && context.UntrappedErrorCount() == errorsBefore;
}

} // namespace brannoc
