#include "values/ValueError.h"

namespace brannoc {

namespace {
RaiseFn s_raiseHandler = nullptr;
}

RaiseFn SetRaiseHandler(RaiseFn handler)
{
    RaiseFn previous = s_raiseHandler;
    s_raiseHandler = handler;
    return previous;
}

bool RaiseValueError(long number)
{
    if (s_raiseHandler)
        s_raiseHandler(number);
    return false;
}

} // namespace brannoc
