#pragma once
// Fits the arguments of a host's call (fire objects, handlers, event sinks) to a procedure's
// parameters: named arguments by position, then positional ones, a ParamArray collecting the rest.
#include <oaidl.h>
#include <utility>
#include <vector>

namespace brannoc {

struct Procedure;

// The arguments as the host gave them, first argument first. Named ones carry the position of the
// parameter they are meant for (0 the first).
struct GivenArguments {
    std::vector<VARIANT*> positional;
    std::vector<std::pair<DISPID, VARIANT*>> named;

    // The arguments of an IDispatch call (given last to first), without the first `skipped` positional
    // ones.
    static GivenArguments FromDispParams(const DISPPARAMS& parameters, UINT skipped = 0);
};

// One argument (null: missing) per parameter before a ParamArray, then the ParamArray's arguments.
struct MatchedArguments {
    std::vector<VARIANT*> fixed;
    std::vector<VARIANT*> rest;
};

// S_OK with the arguments placed; else DISP_E_BADPARAMCOUNT (too many or, with a ParamArray, too few),
// DISP_E_PARAMNOTOPTIONAL (named arguments for a ParamArray procedure, or a required parameter left
// without one: argumentError then holds its position), or E_INVALIDARG (an argument without a place).
HRESULT MatchArguments(const Procedure& procedure, const GivenArguments& given, MatchedArguments& matched,
                       UINT* argumentError);

} // namespace brannoc
