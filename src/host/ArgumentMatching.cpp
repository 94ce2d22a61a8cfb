#include "host/ArgumentMatching.h"

#include "frontend/Symbols.h"

namespace brannoc {

GivenArguments GivenArguments::FromDispParams(const DISPPARAMS& parameters, UINT skipped)
{
    GivenArguments given;
    for (UINT i = 0; i < parameters.cNamedArgs && i < parameters.cArgs; ++i)
        given.named.emplace_back(parameters.rgdispidNamedArgs[i], &parameters.rgvarg[i]);
    for (UINT i = parameters.cArgs; i > parameters.cNamedArgs; --i) {
        if (skipped > 0) {
            --skipped;
            continue;
        }
        given.positional.push_back(&parameters.rgvarg[i - 1]);
    }
    return given;
}

HRESULT MatchArguments(const Procedure& procedure, const GivenArguments& given, MatchedArguments& matched,
                       UINT* argumentError)
{
    const auto& parameters = procedure.parameters;
    const bool paramArray = !parameters.empty() && parameters.back().paramArray;
    const std::size_t fixed = paramArray ? parameters.size() - 1 : parameters.size();
    const std::size_t count = given.positional.size() + given.named.size();
    if (paramArray ? count < fixed : count > fixed)
        return DISP_E_BADPARAMCOUNT;
    if (paramArray && !given.named.empty())
        return DISP_E_PARAMNOTOPTIONAL;

    matched.fixed.assign(fixed, nullptr);
    matched.rest.clear();
    std::size_t placed = 0;
    for (const auto& [position, argument] : given.named) {
        if (position < 0 || static_cast<std::size_t>(position) >= fixed || matched.fixed[position])
            break;
        matched.fixed[position] = argument;
        ++placed;
    }
    std::size_t next = 0;
    for (VARIANT* argument : given.positional) {
        while (next < fixed && matched.fixed[next])
            ++next;
        if (next < fixed) {
            matched.fixed[next++] = argument;
            ++placed;
        } else if (paramArray) {
            matched.rest.push_back(argument);
            ++placed;
        } else {
            break;
        }
    }
    if (placed != count)
        return E_INVALIDARG;
    for (std::size_t i = 0; i < fixed; ++i) {
        if (!matched.fixed[i] && !parameters[i].optional) {
            if (argumentError)
                *argumentError = static_cast<UINT>(i);
            return DISP_E_PARAMNOTOPTIONAL;
        }
    }
    return S_OK;
}

} // namespace brannoc
